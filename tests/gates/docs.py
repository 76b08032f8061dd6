#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""docs.py <root>: the guides say what the code says. Prints each breach as path:line: what."""
import re
import sys
from pathlib import Path

import page_links
from page_links import FENCE

SOURCE = re.compile(r"<!-- from (\S+) -->\n$")
CODE = ("c", "cpp", "python", "go", "java", "lua", "pascal")
FUNCTION = re.compile(r"\b_*(?:kor|abecs|crypt)_[a-z0-9_]+\*?")
CONSTANT = re.compile(r"\b(?:KOR|ABECS|CRYPT)_[A-Z0-9_]+\b")


def line_of(text: str, position: int) -> int:
    return text.count("\n", 0, position) + 1


def anchors(text: str) -> list:
    """What a page's headings are called in links, one by one."""
    titles = re.findall(r"^#+ (.*)$", FENCE.sub("", text), re.MULTILINE)
    return [re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles]


def covers(name: str, others) -> bool:
    """A name that ends in * stands for all that begin so."""
    return any(other.startswith(name[:-1]) for other in others) if name.endswith("*") else name in others


def quotes(root: Path, text: str):
    """A block of code is a part of the file named before it, which the tests build or run."""
    for block in FENCE.finditer(text):
        if block[1] not in CODE:
            continue
        source = SOURCE.search(text[:block.start()])
        if not source:
            yield block.start(), "code without the file it is from"
        elif not (root / source[1]).is_file():
            yield block.start(), f"code from {source[1]}, which is not there"
        elif "\n" + block[2] not in "\n" + (root / source[1]).read_text():
            yield block.start(), f"code that is not in {source[1]}"


def links(page: Path, text: str):
    for at, name, heading in page_links.links(text):
        target = page.parent / name if name else page
        if not target.exists():
            yield at, f"a link to {name}, which is not there"
        elif heading and (times := anchors(target.read_text()).count(heading)) != 1:
            yield at, f"a link to #{heading}, which {target.name} " + (f"has {times} times" if times else "does not have")


def names(text: str, functions: set, constants: set):
    for name in FUNCTION.finditer(text):
        # "abecs_pan_" and the like: a family, spoken of as such.
        if not covers(name[0] + "*" if name[0].endswith("_") else name[0], functions):
            yield name.start(), f"there is no {name[0]}"
    for name in CONSTANT.finditer(text):
        if name[0] not in constants:
            yield name.start(), f"there is no {name[0]}"


def missing(page: str, text: str, wanted):
    """Whether a page that is to be complete names all of these."""
    said = set(FUNCTION.findall(text)) | set(CONSTANT.findall(text)) | {name for _, name, _ in page_links.links(text)}
    for name in sorted(wanted):
        if not any(covers(one, {name}) for one in said):
            yield f"docs/{page}:1: leaves out {name}"


def breaches(root: Path):
    functions = {name for path in (root / "cmake").glob("*.txt") for name in path.read_text().split()}
    headers = {path: path.read_text() for path in sorted((root / "include").rglob("*.h"))}
    constants = set(CONSTANT.findall("\n".join(headers.values())))
    docs = root / "docs"
    pages = {str(page.relative_to(docs)): page.read_text() for page in sorted(docs.rglob("*.md"))}
    for name, text in [*pages.items(), ("../README.md", (root / "README.md").read_text())]:
        found = [*links(root / "docs" / name, text), *names(text, functions, constants)]
        found += quotes(root, text)
        for position, what in found:
            yield f"docs/{name}:{line_of(text, position)}: {what}"

    def declared(header: str, pattern: str) -> set:
        return set(re.findall(pattern, headers[root / "include/quorvel" / header]))
    complete = {
        "README.md": {page for page in pages if "/" not in page} - {"README.md"},
        "commands.md": {name for name in functions if name.startswith("abecs_cmd_")},
        "errors.md": declared("kor/result.h", r"\bKOR_RESULT_\w+(?= =)")
        | declared("abecs/rsp_stat.h", r"\bABECS_RSP_STAT_\w+(?= =)"),
    }
    for page, wanted in complete.items():
        if not wanted or page not in pages:
            yield f"docs/{page}:1: nothing to check"
        else:
            yield from missing(page, pages[page], wanted)


found = list(breaches(Path(sys.argv[1])))
print("\n".join(found))
sys.exit(1 if found else 0)
