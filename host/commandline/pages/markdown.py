"""The pages in docs/ as blocks. They keep to few shapes: headings, paragraphs, fenced texts, lists, tables."""

import re
from dataclasses import dataclass, field
from pathlib import Path

ITEM = re.compile(r"- (`[^`]*`(?:, `[^`]*`)*):(?: (.*))?$")


@dataclass
class Block:
    kind: str  # heading, text, fence, item, bullet, table
    head: str = ""  # a heading's text, an item's term
    lines: list = field(default_factory=list)
    level: int = 0  # of a heading


@dataclass
class Page:
    command: str  # kiv itself or a subcommand; empty for a page of its own
    name: str  # of the man page
    purpose: str
    blocks: list
    short: list  # what -h shows

    def under(self, *titles):
        """The blocks behind headings of these titles, up to the next heading."""
        title = ""
        for block in self.blocks:
            if block.kind == "heading":
                title = block.head
            elif title in titles:
                yield block


def blocks_of(text):
    blocks, fenced, after_blank = [], False, True
    for line in text.splitlines():
        last = blocks[-1] if blocks else Block("heading")
        if line.startswith("```"):
            fenced = not fenced
            if fenced:
                blocks.append(Block("fence"))
        elif fenced:
            last.lines.append(line)
        elif heading := re.match(r"(#+) (.*)$", line):
            blocks.append(Block("heading", heading[2], level=len(heading[1])))
        elif item := ITEM.match(line):
            blocks.append(Block("item", item[1], [item[2]] if item[2] else []))
        elif line.startswith("- "):
            blocks.append(Block("bullet", lines=[line[2:]]))
        elif line.startswith("  ") and last.kind in ("item", "bullet"):
            last.lines.append(line[2:])
        elif line.startswith("|"):
            if last.kind != "table":
                blocks.append(Block("table"))
            if not set(line) <= set("|-"):
                blocks[-1].lines.append([cell.strip() for cell in line[1:-1].split("|")])
        elif line and not line.startswith("!["):
            if last.kind != "text" or after_blank:
                blocks.append(Block("text"))
            blocks[-1].lines.append(line)
        after_blank = not line
    return blocks


def unlinked(text):
    return re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text)


def plain(text):
    return re.sub(r"(?<![*\w])(\*\*?)([^*]+)\1", r"\2", unlinked(text).replace("`", ""))


def as_items(table):
    """A table as a list: no terminal is as wide as some of them. Its first column are the terms."""
    header, *rows = table.lines
    for term, *cells in rows:
        said = [f"{name}: {cell};" if len(cells) > 1 else cell for name, cell in zip(header[1:], cells) if cell]
        said[-1] = said[-1].removesuffix(";")
        yield Block("item", f"{header[0]} {term}" if term.isdigit() else term, said)


def expanded(blocks, shared):
    """In place of a text that names shared options, or those left out, stand these, behind when they apply."""
    for block in blocks:
        text = " ".join(block.lines)
        if block.kind != "text" or "[shared options]" not in text:
            yield block
            continue
        if text.startswith("Also all"):
            others = list(named(text, shared))
            yield from (option for option in shared if option not in others)
            continue
        intro, names = text.split(":", 1)
        if not intro.startswith("Also"):
            yield Block("text", lines=[re.sub(r",? also \[[^]]*\]\([^)]*\)", "", intro) + ":"])
        yield from named(names, shared)


def named(names, options):
    for name in re.findall(r"`(-[^`]*)`", names):
        yield next(item for item in options if name in re.split(r", | ", item.head.strip("`")))


def in_short(blocks, options):
    """A list of names stands for these options with their first sentence."""
    for block in blocks:
        text = " ".join(block.lines)
        if block.kind != "text" or not text.startswith("`-"):
            yield block
            continue
        for option in named(text, options):
            yield Block("item", option.head, [re.split(r"(?<=\.) ", " ".join(option.lines))[0]])


def page_of(command, name, purpose, blocks):
    """Takes `In short` out of the blocks."""
    heads = [i for i, block in enumerate(blocks) if block.kind == "heading"] + [len(blocks)]
    start = next((i for i in heads[:-1] if blocks[i].head == "In short"), None)
    if start is None:
        return Page(command, name, purpose, blocks, [])
    end = heads[heads.index(start) + 1]
    page = Page(command, name, purpose, blocks[:start] + blocks[end:], [])
    page.short = list(in_short(blocks[start + 1 : end], list(page.under("Options"))))
    return page


def read_pages(path):
    """A file's page, and one for each part `## kiv NAME`."""
    front, *parts = re.split(r"^## kiv (\S+)\n", Path(path).read_text(encoding="utf-8"), flags=re.MULTILINE)
    title, *blocks = blocks_of(front)
    name, purpose = title.head.split(": ", 1)
    first = page_of(name if parts else "", name, purpose, blocks)
    shared = list(first.under("Shared options"))
    purposes = {block.head.strip("`"): " ".join(block.lines) for block in first.under("Subcommands")}
    return [first] + [
        page_of(command, f"kiv-{command}", purposes[command], list(expanded(blocks_of(body), shared)))
        for command, body in zip(parts[::2], parts[1::2])
    ]
