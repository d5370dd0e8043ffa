#!/usr/bin/env python3
"""Makes what -h and --help show, the man pages and the shells' completion from the pages in docs/.

    make.py VERSION HELP.cpp OUTPUT_FOLDER PAGE.md...

A page `# NAME: what it is`, or a part `## kiv NAME` of the tool's page, becomes a man page of its own. Of a part,
`### In short` is what -h shows, options by their names alone; those that several have stand once, under
`## Shared options`.
"""

import sys
from pathlib import Path

from completion import bash, fish, zsh
from help import help_source
from man import man_page, section
from markdown import read_pages


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8", newline="\n")


def main(version, source, folder, *paths):
    folder = Path(folder)
    pages = [page for path in paths for page in read_pages(path)]
    write(Path(source), help_source(pages))
    for page in pages:
        number = section(page)
        write(folder / f"man/man{number}/{page.name}.{number}", man_page(page, version, pages))
    write(folder / "bash-completion/completions/kiv", bash(pages))
    write(folder / "zsh/site-functions/_kiv", zsh(pages))
    write(folder / "fish/vendor_completions.d/kiv.fish", fish(pages))


main(*sys.argv[1:])
