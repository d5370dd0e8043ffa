# shellcheck shell=sh
# Sourced by the other scripts. need PACKAGE...: installs what is missing and stops when it cannot.

step() {
    printf '== %s\n' "$*"
}

need() {
    missing=
    for package in "$@"; do
        case $(dpkg-query -W -f='${Status}' "$package" 2>/dev/null) in
        *"ok installed") ;;
        *) missing="$missing $package" ;;
        esac
    done
    [ -n "$missing" ] || return 0

    step "install$missing"
    as_root=
    if [ "$(id -u)" != 0 ]; then
        as_root=sudo
    fi
    export DEBIAN_FRONTEND=noninteractive
    log=$(mktemp)
    wait="-o DPkg::Lock::Timeout=300" # for another apt that is at work
    # shellcheck disable=SC2086 # a list of words
    $as_root apt-get $wait update >"$log" 2>&1 || true # an old list of packages may do
    # shellcheck disable=SC2086
    if ! $as_root apt-get $wait install -y --no-install-recommends $missing >>"$log" 2>&1; then
        tail -n 5 "$log" >&2
        rm -f "$log"
        printf 'error: cannot install:%s\n' "$missing" >&2
        exit 1
    fi
    rm -f "$log"
}

# need_to_build [PACKAGE...]: what the library and the tool are built with, and these.
need_to_build() {
    need cmake g++ ninja-build python3 libcli11-dev nlohmann-json3-dev libeigen3-dev libjs-dygraphs "$@"
}

project_version() {
    awk '/^#define KIV_VERSION_/ { printf "%s%s", dot, $3; dot = "." }' include/KIVInterface/Version.h
}
