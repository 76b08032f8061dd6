#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""commands.py <root>: each command has a page that names what the command carries, in the width that it has there, and
the statuses of the exchanges that it shows; and the reference of parameters and statuses agrees with the pages. Prints
each breach."""
import re
import sys
from pathlib import Path

REFERENCE = ("parameters", "statuses", "tables-records")
NO_COMMANDS = {"ERR", "NTM"}
PARAMETER = r"(?:SPE|PP)_[A-Z0-9]+"
FIELD = re.compile(r'\b(digits|text|hex|withheld)\("(\w+)", (\d+)\)')
EXCHANGE = re.compile(r"^<!-- exchange: (\w+[^\n]*?) -->\n```\n(.*?)^```$", re.M | re.S)
ANSWERED = re.compile(r"^  [^:\n]*, (\d{3}) ST_\w+", re.M)
FAMILY = re.compile(r"^(PP_(?:KSNDESP|KSNTDESP|KSNTDESD|TABVER))\d+$")


def read(path: Path) -> str:
    return path.read_text() if path.is_file() else ""


def table_rows(text: str):
    """The cells of each row of each table."""
    return [[cell.strip() for cell in line.strip("|").split("|")]
            for line in text.split("\n") if line.startswith("| ")]


def cell(row: list, at: int) -> str:
    return row[at] if at < len(row) else ""


class Sources:
    """What the tables of the code have."""

    def __init__(self, root: Path):
        self.root = root
        self.commands = [id for id in re.findall(r'Command\{"([A-Z]{3})"', read(root / "wire/command.h"))
                         if id not in NO_COMMANDS]
        self.functions = {name for path in (root / "cmake").glob("*.txt") for name in path.read_text().split()}
        constants = {f"{space}::{name}": int(value, 16)
                     for space, body in re.findall(r"namespace (spe|pp) \{(.*?)\}", read(root / "wire/param_id.h"), re.S)
                     for name, value in re.findall(r"(k\w+) = (0x[0-9A-F]{4});", body)}
        self.ids = {}
        for id, name in re.findall(rf'Row\{{([\w:]+), "({PARAMETER})"', read(root / "wire/param_id.cpp")):
            self.ids[name] = constants[id] if id in constants else int(id, 16)
        self.constants = {constant: name for constant, id in constants.items()
                          for name, known in self.ids.items() if known == id}
        self.widths = {f"SPE_{name}": width for name, width in
                       re.findall(r"QUORVEL_SPE\((\w+)\), SpeForm::k(?:Digits|Binary|Bytes), (\d+)",
                                  read(root / "abecs/data/spe_param.h"))}
        self.statuses = {name: int(code) for name, code in
                         re.findall(r"\bk(\w+) = (\d+),", read(root / "wire/status.h"))}

    def fields(self, id: str) -> dict:
        """The fields of a command and, of those of one width, which."""
        name = id.capitalize()
        found = {}
        for body in re.findall(rf"std::array k{name}(?:Request|Response)\{{(.*?)\}};",
                               read(self.root / "wire/command.cpp"), re.S):
            for match in FIELD.finditer(body):
                fixed = not re.search(r"(counted|rest)\($", body[:match.start()])
                found[match[2]] = match[3] if fixed else ""
        return found

    def own(self, id: str) -> str:
        """The source that plays the command, where it plays no other one."""
        return read(self.root / f"simulator/commands/{id.lower()}.cpp")

    def carried(self, id: str) -> set:
        requests = {f"SPE_{name}" for name in
                    re.findall(r"ABECS_SPE_ID_(\w+)", read(self.root / f"abecs/cmd/{id.lower()}.cpp"))}
        return requests | {self.constants[name] for name in re.findall(r"\b(?:spe|pp)::k\w+", self.own(id))
                           if name in self.constants}

    def answers(self, id: str) -> set:
        return {self.statuses[name] for name in re.findall(r"\bStatus::k(\w+)", self.own(id)) if name in self.statuses}


class Page:
    def __init__(self, text: str):
        self.rows = table_rows(text)
        self.text = text
        self.parameters = {}
        for row in self.rows:
            if re.fullmatch(rf"(?:{PARAMETER}(?: to \d+)?(?:, )?)+", row[0]):
                for name in re.findall(PARAMETER, row[0]):
                    self.parameters.setdefault(FAMILY.sub(r"\1", name), row)
        self.statuses = {int(match[1]): match[2] for row in self.rows
                         for match in [re.match(r"(\d+) ST_(\w+)$", row[0])] if match}
        self.exchanges = {name: {int(code) for code in ANSWERED.findall(lines)} for name, lines in EXCHANGE.findall(text)}


def page_breaches(sources: Sources, id: str, page: Page):
    lower = id.lower()
    said = set(re.findall(r"`(abecs_cmd_\w+\*?)`", page.text))
    for name in sorted(sources.functions):
        own = name == f"abecs_cmd_{lower}" or name.startswith(f"abecs_cmd_{lower}_") \
            or (len(name) == 14 and name.startswith(f"abecs_cmd_{lower}"))
        if own and not any(name == each or (each.endswith("*") and name.startswith(each[:-1])) for each in said):
            yield f"leaves out {name}"
    for name, width in sources.fields(id).items():
        rows = [row for row in page.rows if name in re.split(r", ", row[0])]
        if not rows:
            yield f"leaves out the field {name}"
        elif width and not any(re.match(rf"{width}\b", cell(row, 1)) for row in rows):
            yield f"{name} has {width} characters"
    named = set(page.parameters)
    carried = sources.carried(id)
    for name in sorted(carried - named):
        yield f"leaves out {name}"
    for name in sorted(named - set(sources.ids)):
        yield f"there is no {name}"
    for name in sorted(each for each in named - carried if each.startswith("SPE_")):
        yield f"{id} does not carry {name}"
    for name, row in page.parameters.items():
        # Where the row has them: GIX names its items many in a row.
        if re.fullmatch(r"[0-9A-F]{4}", cell(row, 1)) and int(cell(row, 1), 16) != sources.ids.get(name):
            yield f"{name} is {sources.ids.get(name, 0):04X}"
        if name in sources.widths and cell(row, 2) != sources.widths[name]:
            yield f"{name} has {sources.widths[name]} characters"
    for code in sorted(sources.answers(id) - set(page.statuses)):
        yield f"leaves out status {code}"
    for code, name in page.statuses.items():
        if sources.statuses.get(name.capitalize()) != code:
            yield f"there is no {code} ST_{name}"
    if not any(re.match(rf"{lower}\b", name) for name in page.exchanges):
        yield "shows no exchange"
    for name, codes in page.exchanges.items():
        if not codes:
            yield f"shows no status in the exchange '{name}'"
        for code in sorted(codes - set(page.statuses)):
            yield f"leaves out status {code}, which the exchange '{name}' shows"


def links_in(text: str) -> set:
    return set(re.findall(r"\((\w+)\.md\)", text))


def reference_breaches(sources: Sources, pages: dict, folder: Path):
    rows = {row[0]: row for row in table_rows(read(folder / "parameters.md"))}
    for name, id in sources.ids.items():
        if name not in rows:
            yield "parameters", f"leaves out {name}"
        elif cell(rows[name], 1) != f"{id:04X}":
            yield "parameters", f"{name} is {id:04X}"
        elif len(rows[name]) == 6:
            due = {page for page, each in pages.items() if name in each.parameters}
            if links_in(rows[name][5]) != due:
                yield "parameters", f"{name} is in {', '.join(sorted(due)) or 'none'}"
    told = {}
    for row in table_rows(read(folder / "statuses.md").partition("## All of them")[2]):
        match = re.match(r"(\d+) ST_(\w+)$", row[0])
        if match:
            told[int(match[1])] = (match[2], links_in(cell(row, 2)))
    for name, code in sources.statuses.items():
        due = {page for page, each in pages.items() if code in each.statuses} if code else set()
        if code not in told or told[code][0].capitalize() != name:
            yield "statuses", f"leaves out {code} ST_{name.upper()}"
        elif told[code][1] != due:
            yield "statuses", f"{code} is answered by {', '.join(sorted(due))}"


def breaches(root: Path):
    sources = Sources(root)
    folder = root / "docs/commands"
    if not sources.commands or not sources.ids or not sources.statuses:
        yield "wire: nothing to check"
    overview = links_in(read(root / "docs/commands.md").replace("commands/", ""))
    pages = {}
    for id in sources.commands:
        path = folder / f"{id.lower()}.md"
        if not path.is_file():
            yield f"docs/commands: no page for {id}"
            continue
        pages[path.stem] = Page(path.read_text())
        for what in page_breaches(sources, id, pages[path.stem]):
            yield f"docs/commands/{path.name}: {what}"
    for page in sorted(path.stem for path in folder.glob("*.md")):
        if page not in pages and page not in REFERENCE:
            yield f"docs/commands/{page}.md: there is no such command"
    for page in sorted({*pages, "parameters", "statuses"} - overview):
        yield f"docs/commands.md: no link to commands/{page}.md"
    for page, what in reference_breaches(sources, pages, folder):
        yield f"docs/commands/{page}.md: {what}"


found = list(breaches(Path(sys.argv[1])))
print("\n".join(found))
sys.exit(1 if found else 0)
