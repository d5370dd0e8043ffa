"""The shells' completion: subcommands, options, and what stands behind an option."""

import re
from dataclasses import dataclass

from markdown import plain

WORDS = {"FRAME", "KIND", "COLUMNS", "FORMAT", "POSES"}  # values that the option's text has as code
FILES = {"FILE", "FILES", "PAGE"}
HEADER = {"COLUMN"}  # a column of the table that is given
RESULTS = {"NAMES"}  # columns of results, with commas between
PAIR = {"PAIR"}  # a column of readings, and behind = its name in the table


@dataclass
class Option:
    names: list
    value: str  # its placeholder; empty for a flag
    text: str
    words: list

    @property
    def kind(self):
        kinds = {"": "flag", **dict.fromkeys(FILES, "files"), **dict.fromkeys(HEADER, "columns")}
        return {**kinds, **dict.fromkeys(RESULTS, "results"), **dict.fromkeys(PAIR, "pair")}.get(self.value, "words")


def options_of(page):
    for block in page.under("Options"):
        term, text = block.head.strip("`"), " ".join(block.lines)
        names, value = re.fullmatch(r"(.*?)(?: ([A-Z,]+))?", term).groups()
        if names.startswith("-"):
            words = re.findall(r"`([a-z]+)`", text) if value in WORDS else []
            yield Option(names.split(", "), value or "", re.split(r"[.;:(]", plain(text))[0].strip(), words)


def columns_of(pages, of):
    page = next(page for page in pages if page.name == "kiv-tables")
    return [name for block in page.under(of) for name in re.findall(r"`(\w+)`", block.head)]


def subcommands(pages):
    return [page for page in pages if page.command not in ("", "kiv")]


def pages_of_help(pages):
    return [page.command or page.name.removeprefix("kiv-") for page in pages]


HEADER_NAMES = r"""    local word
    for word in "$@"; do
        case $word in
        *.prm | -*) ;;
        *) [ -f "$word" ] && head -n 1 -- "$word" | tr ',;\t' '\n\n\n' | tr -d '"\r' ;;
        esac
    done"""


def lines(words):
    return "$'" + "\\n".join(words) + "'"


def bash(pages):
    behind = {}  # what completes a value: the options, as SUBCOMMAND:OPTION
    options = []
    for page in subcommands(pages):
        for option in options_of(page):
            values = {
                "files": "_kiv_files",
                "columns": "_kiv_columns",
                "results": "_kiv_results",
                "pair": f"compopt -o nospace; _kiv_words {lines(f'{name}=' for name in columns_of(pages, 'Readings'))}",
                "words": f"_kiv_words {lines(option.words)}",
            }
            if option.kind != "flag":
                behind.setdefault(values[option.kind], []).extend(f"{page.command}:{name}" for name in option.names)
        names = lines(name for option in options_of(page) for name in option.names)
        options.append(f"    {page.command}) _kiv_words {names} ;;")
    values = [f"    {' | '.join(patterns)})\n        {action} ;;" for action, patterns in behind.items()]
    names = [page.command for page in subcommands(pages)]
    newline = "\n"
    return f"""# Completion of kiv in bash.

_kiv_header() {{
{HEADER_NAMES}
}}

# What a table has for names is taken as it stands, where compgen would run a command in it.
_kiv_columns() {{
    local name
    while IFS= read -r name; do
        [[ $name == "$current"* ]] && COMPREPLY+=("$(printf %q "$name")")
    done < <(_kiv_header "${{COMP_WORDS[@]:2}}")
}}

_kiv_words() {{
    local IFS=$'\\n'
    COMPREPLY=($(compgen -W "$1" -- "$current"))
}}

_kiv_files() {{
    compopt -o filenames
    local IFS=$'\\n'
    COMPREPLY=($(compgen -f -- "$current"))
}}

# Names with commas between: the last one is completed.
_kiv_results() {{
    local last=${{current##*,}} IFS=$'\\n'
    compopt -o nospace
    COMPREPLY=($(compgen -P "${{current%"$last"}}" -W {lines(columns_of(pages, "Results"))} -- "$last"))
}}

_kiv_options() {{
    case ${{COMP_WORDS[1]}} in
{newline.join(options)}
    esac
}}

_kiv() {{
    local current=$2 previous=$3
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _kiv_words {lines([*names, "-h", "--help", "-V", "--version"])}
        return
    fi
    case ${{COMP_WORDS[1]}}:$previous in
    help:*)
        _kiv_words {lines(pages_of_help(pages))} ;;
    *:=)
        _kiv_columns ;;
{newline.join(values)}
    *)
        if [[ $current == -* ]]; then _kiv_options; else _kiv_files; fi ;;
    esac
}}

complete -F _kiv kiv
"""


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh(pages):
    cases = []
    for page in subcommands(pages):
        arguments = []
        for option in options_of(page):
            text = option.text.replace("[", "(").replace("]", ")")
            action = {
                "flag": "",
                "files": ":file:_files",
                "columns": ":column:_kiv_header",
                "results": ":columns:_kiv_results",
                "pair": f":column:({' '.join(f'{name}=' for name in columns_of(pages, 'Readings'))})",
                "words": f":{option.value.lower()}:({' '.join(option.words)})",
            }[option.kind]
            alike = f"({' '.join(option.names)})" if len(option.names) > 1 else ""
            arguments += [quoted(f"{alike}{name}[{text}]{action}") for name in option.names]
        names = " ".join(pages_of_help(pages))
        arguments.append(quoted(f":page:({names})" if page.command == "help" else "*:file:_files"))
        cases.append(f"    {page.command})\n        _arguments -s \\\n            " + " \\\n            ".join(arguments) + " ;;")
    commands = "\n        ".join(quoted(f"{page.command}:{plain(page.purpose)}") for page in subcommands(pages))
    return f"""#compdef kiv

_kiv_header() {{
    local -a names
    names=(${{(f)"$(_kiv_header_names $words)"}})
    compadd -a names
}}

_kiv_header_names() {{
{HEADER_NAMES}
}}

_kiv_results() {{
    _values -s , column {' '.join(columns_of(pages, 'Results'))}
}}

_kiv() {{
    local -a commands
    commands=(
        {commands}
    )
    if ((CURRENT == 2)); then
        _describe subcommand commands
        return
    fi
    local command=$words[2]
    shift words
    ((CURRENT--))
    case $command in
{chr(10).join(cases)}
    esac
}}

_kiv "$@"
"""


def fish(pages):
    out = [
        "# Completion of kiv in fish.",
        "",
        "function __kiv_header",
        "    for word in (commandline -opc)[3..]",
        "        if test -f $word; and not string match -q '*.prm' -- $word",
        "            head -n 1 -- $word | string split , | string split ';' | string split \\t | string trim -c '\"'\\r",
        "        end",
        "    end",
        "end",
        "",
        "function __kiv_results",
        "    set -l start (string replace -r '[^,]*$' '' -- (commandline -ct))",
        f"    printf '%s\\n' $start{{{','.join(columns_of(pages, 'Results'))}}}",
        "end",
        "",
        "complete -c kiv -n __fish_use_subcommand -s V -l version -d 'shows the version'",
    ]
    for page in subcommands(pages):
        name, condition = page.command, f"'__fish_seen_subcommand_from {page.command}'"
        out.append(f"complete -c kiv -n __fish_use_subcommand -xa {name} -d {quoted(plain(page.purpose))}")
        for option in options_of(page):
            names = "".join(
                f" -l {word[2:]}" if word.startswith("--") else f" -s {word[1:]}" for word in option.names
            )
            value = {
                "flag": "",
                "files": " -rF",
                "columns": " -xa '(__kiv_header)'",
                "results": " -xa '(__kiv_results)'",
                "pair": " -xa " + quoted(" ".join(f"{name}=" for name in columns_of(pages, "Readings"))),
                "words": f" -xa {quoted(' '.join(option.words))}" if option.words else " -x",
            }[option.kind]
            out.append(f"complete -c kiv -n {condition}{names}{value} -d {quoted(option.text)}")
    names = " ".join(pages_of_help(pages))
    out.append(f"complete -c kiv -n '__fish_seen_subcommand_from help' -xa {quoted(names)}")
    return "\n".join(out) + "\n"
