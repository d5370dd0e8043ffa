# shellcheck shell=sh
# Sourced by the scripts that run Windows programs, from the project's folder: Wine with a prefix of the
# build tree, without a display, its server kept while the script runs.
export WINEPREFIX="$PWD/build/windows/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export LC_ALL=C.UTF-8 # in the plain C locale Wine has no names but those in ASCII
mkdir -p "$WINEPREFIX"
wineserver -p || true # one may be running already
trap 'wineserver -k || true' EXIT
wine wineboot >/dev/null 2>&1
