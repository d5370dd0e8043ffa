"""Pages as -h and --help show them."""

import textwrap

from markdown import as_items, plain


def plain_text(blocks, width=80):
    """Terms with their text behind or below them."""
    out, previous = [], "heading"
    blocks = [each for block in blocks for each in (as_items(block) if block.kind == "table" else [block])]

    def filled(lines, first="", others=""):
        text = plain(" ".join(lines))
        return textwrap.wrap(
            text, width, initial_indent=first, subsequent_indent=others, break_on_hyphens=False, break_long_words=False
        )

    for block in blocks:
        if previous != "heading" and not (block.kind == previous and block.kind in ("item", "bullet")):
            out.append("")
        if block.kind == "heading":
            out.append(plain(block.head))
        elif block.kind == "fence":
            out += [f"    {line}".rstrip() for line in block.lines]
        elif block.kind == "item":
            term, behind = f"  {plain(block.head)}", " " * 12
            beside = block.lines and len(term) < len(behind)
            out += [] if beside else [term]
            out += filled(block.lines, term.ljust(12) if beside else behind, behind)
        elif block.kind == "bullet":
            out += filled(block.lines, "- ", "  ")
        else:
            out += filled(block.lines)
        previous = block.kind
    return "\n".join(out)


def screen_text(blocks, column=27, width=79):
    """The same in fewer lines: each text begins in one column."""
    out, previous = [], ""
    for block in blocks:
        if previous and not block.kind == previous == "item":
            out.append("")
        text, term = plain(" ".join(block.lines)), f"  {plain(block.head)}"
        if block.kind == "fence":
            out += [f"    {line}" for line in block.lines]
        elif block.kind == "item":
            beside = len(term) < column - 1
            out += [] if beside else [term]
            start = term.ljust(column) if beside else " " * column
            out += textwrap.wrap(text, width, initial_indent=start, subsequent_indent=" " * column)
        else:
            out += textwrap.wrap(text, width)
        previous = block.kind
    return "\n".join(out)


def long_help(page):
    return (f"{page.name}: {plain(page.purpose)}\n\n" if page.command in ("", "kiv") else "") + plain_text(page.blocks)


def short_help(page):
    start = "kiv" if page.command == "kiv" else f"kiv {page.command}"
    shown = [*page.under("Usage", "Subcommands"), *page.short]
    return f"{start}: {plain(page.purpose)}\n\n{screen_text(shown)}\n\n{start} --help tells all."


def help_source(pages):
    def function(name, text_of, pages):
        cases = "".join(
            f'    if (page == "{page.command or page.name.removeprefix("kiv-")}")\n'
            f'        return R"page({text_of(page)}\n)page";\n'
            for page in pages
        )
        return f"std::string_view {name}(std::string_view page) {{\n{cases}    return {{}};\n}}\n\n"

    return (
        '// Made from the pages in docs.\n#include "host/commandline/HelpTexts.h"\n\nnamespace kiv::host {\n\n'
        + function("helpText", long_help, pages)
        + function("shortHelpText", short_help, [page for page in pages if page.command])
        + "} // namespace kiv::host\n"
    )
