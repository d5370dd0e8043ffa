"""Pages as -h and --help show them."""

import textwrap

from markdown import plain


def plain_text(blocks):
    """Terms with their text behind or below them."""
    out, previous = [], "heading"
    for block in blocks:
        if previous != "heading" and not (block.kind == previous and block.kind in ("item", "bullet")):
            out.append("")
        if block.kind == "heading":
            out.append(plain(block.head))
        elif block.kind == "fence":
            out += [f"    {line}".rstrip() for line in block.lines]
        elif block.kind == "item":
            term, lines = plain(block.head), [" " * 12 + plain(line) for line in block.lines]
            if lines and len(term) < 10:
                lines[0] = f"  {term:10}{lines[0][12:]}"
            else:
                lines.insert(0, f"  {term}")
            out += lines
        elif block.kind == "bullet":
            out += [("  " if i else "- ") + plain(line) for i, line in enumerate(block.lines)]
        else:
            out += [plain(line) for line in block.lines]
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
    return (f"kiv: {plain(page.purpose)}\n\n" if page.command == "kiv" else "") + plain_text(page.blocks)


def short_help(page):
    start = "kiv" if page.command == "kiv" else f"kiv {page.command}"
    shown = [*page.under("Usage"), *page.short]
    return f"{start}: {plain(page.purpose)}\n\n{screen_text(shown)}\n\n{start} --help tells all."


def help_source(pages):
    def function(name, text_of):
        cases = "".join(
            f'    if (command == "{page.command}")\n        return R"page({text_of(page)}\n)page";\n'
            for page in pages
            if page.command
        )
        return f"std::string_view {name}(std::string_view command) {{\n{cases}    return {{}};\n}}\n\n"

    return (
        '// Made from the pages in docs.\n#include "host/commandline/HelpTexts.h"\n\nnamespace kiv::host {\n\n'
        + function("helpText", long_help)
        + function("shortHelpText", short_help)
        + "} // namespace kiv::host\n"
    )
