"""A page as a man page."""

import re
import textwrap

from markdown import as_items, unlinked

DATE = "2026-11-27"  # when the pages were last gone over


def roff(text):
    text = unlinked(text).replace("\\", "\\e").replace("-", "\\-")
    text = re.sub(r"`([^`]*)`", r"\\fB\1\\fR", text)
    text = re.sub(r"\*\*([^*]+)\*\*", r"\\fB\1\\fR", text)
    text = re.sub(r"(?<![*\w])\*([^*]+)\*", r"\\fI\1\\fR", text)
    return re.sub(r"^([.'])", r"\\&\1", text)


def filled(lines):
    """A paragraph in lines of their usual length; none begins like a request."""
    folded = textwrap.wrap(roff(" ".join(lines)), 72, break_long_words=False, break_on_hyphens=False)
    return [re.sub(r"^([.'])", r"\\&\1", line) for line in folded]


def section(page):
    return 1 if page.command else 5


def see_also(page, pages):
    """From the tool's page to all, from the others to it and to those of the files."""
    others = [each for each in pages if each != page and (page.command == "kiv" or each.command in ("", "kiv"))]
    ends = [","] * (len(others) - 1) + [""]
    yield ".SH SEE ALSO"
    yield from (f".BR {roff(each.name)} ({section(each)}){end}" for each, end in zip(others, ends))
    yield from (".PP", "Pages that end in .md lie in share/doc/KIVInterface/docs.")


def man_page(page, version, pages):
    out = [
        f'.TH {roff(page.name.upper())} {section(page)} {DATE} "KIVInterface {version}" KIVInterface',
        ".SH NAME",
        f"{roff(page.name)} \\- {roff(page.purpose)}",
    ]
    usage = list(page.under("Usage"))
    if usage:
        out += [".SH SYNOPSIS", ".nf", *map(roff, usage[0].lines), ".fi"]
    out.append(".SH DESCRIPTION")
    previous = "heading"
    top = min((block.level for block in page.blocks if block.kind == "heading"), default=2)
    for block in page.blocks:
        if block in usage or block.head == "Usage":
            continue
        paragraph = [] if previous == "heading" else [".PP"]
        if block.kind == "heading":
            if previous == "heading":
                out.pop()
            out.append(f".SH {roff(block.head.upper())}" if block.level == top else f".SS {roff(block.head)}")
        elif block.kind == "fence":
            out += paragraph + [".RS 4", ".nf", *map(roff, block.lines), ".fi", ".RE"]
        elif block.kind == "item":
            out += [".TP", roff(block.head), *filled(block.lines)]
        elif block.kind == "bullet":
            out += [".IP \\(bu 2", *filled(block.lines)]
        elif block.kind == "table":
            for item in as_items(block):
                out += [".TP", roff(item.head), "\n.br\n".join("\n".join(filled([cell])) for cell in item.lines)]
        else:
            out += paragraph + filled(block.lines)
        previous = block.kind
    out += see_also(page, pages)
    return "\n".join(line for line in out if line) + "\n"
