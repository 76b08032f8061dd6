#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""sources.py <root>: rules of the sources that no compiler checks. Prints each breach as path:line: what."""
import re
import sys
from pathlib import Path

SUFFIXES = {".c", ".h", ".cpp", ".hpp"}
LIBRARY = ("core", "crypt", "abecs")

# What is forbidden in the library, and the files that may.
FORBIDDEN = [
    (r"\bnew\b(?!\s*[(>])", "operator new (other than the placement form)", ()),
    (r"(?<!= )\bdelete\b", "operator delete", ()),
    (r"\bthrow\b|\btry\b|\bcatch\s*\(", "a C++ exception", ()),
    (r"\bdynamic_cast\b|\btypeid\b|\bvirtual\b", "run-time type information or a virtual function", ()),
    (r"~[A-Z]\w*\s*\(", "a destructor", ()),
    (r"\bstd::(w?string|vector|deque|list|map|set|unordered_\w+|function|any|variant|(unique|shared|weak)_ptr"
     r"|thread|mutex|\w*stringstream|[io]?f?stream|cout|cerr|regex)\b", "a library type with a destructor", ()),
    (r"\.(at|substr)\(", "a member that throws", ()),
    (r"#\s*include\s*<(string|vector|deque|list|map|set|functional|iostream|fstream|sstream|regex|thread|mutex|format"
     r"|stdexcept)>", "a header of the C++ runtime", ()),
    (r"\b(malloc|calloc|realloc|free|strdup)\s*\(", "memory that is not of kor_heap_alloc", ("core/heap.cpp",)),
    (r"\b(abort|exit|_exit|quick_exit|terminate)\s*\(", "an end of the process", ()),
    (r"\b(printf|puts|putchar|fputs)\s*\(", "printing", ("core/exception.cpp", "core/test.cpp")),
    (r"#\s*include\s*<(cctype|ctype\.h|clocale|locale\.h|locale)>|\b((is|to)(w?alpha|w?upper|w?lower|w?alnum|w?print"
     r"|w?space)|w?cscasecmp|strn?casecmp|strn?icmp|strcoll|strxfrm|setlocale)\s*\(", "what the locale decides", ()),
    (r"\b(__)?constructor(__)?\b", "an initialiser", ("crypt/init.cpp",)),
]
STRINGS_AND_COMMENTS = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)|(?P<text>"(?:\\.|[^"\\\n])*")|(?P<char>(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+')""",
    re.DOTALL)
HEADS = {
    "//": "// SPDX-License-Identifier: MIT\n// Copyright (c) 2026 the quorvel authors\n",
    "/*": "/* SPDX-License-Identifier: MIT */\n/* Copyright (c) 2026 the quorvel authors */\n",
}


def code_of(source: str) -> str:
    """The source with comments blanked and texts emptied, every line in its place."""
    def blank(match: re.Match) -> str:
        if match["comment"]:
            return re.sub(r"[^\n]", " ", match[0])
        return '""' if match["text"] else "' '"
    return STRINGS_AND_COMMENTS.sub(blank, source)


def sources_in(folder: Path):
    return sorted(path for path in folder.rglob("*") if path.suffix in SUFFIXES)


def library_breaches(root: Path):
    setjmps = []
    for folder in LIBRARY:
        for path in sources_in(root / folder):
            name = path.relative_to(root).as_posix()
            for number, line in enumerate(code_of(path.read_text()).splitlines(), 1):
                for pattern, what, allowed in FORBIDDEN:
                    if name not in allowed and re.search(pattern, line):
                        yield f"{name}:{number}: {what}"
                if re.search(r"\b_?_?(sig)?setjmp\s*\(", line):
                    setjmps.append(f"{name}:{number}")
    if len(setjmps) != 1:
        yield f"the library has {len(setjmps)} calls of setjmp, not one: {' '.join(setjmps)}"


def head_breaches(root: Path):
    for folder in LIBRARY + ("include", "wire", "simulator", "cli", "examples", "tests", "fuzz"):
        for path in sources_in(root / folder):
            if not path.read_text().startswith(HEADS.get(path.read_text()[:2], "\0")):
                yield f"{path.relative_to(root).as_posix()}:1: no licence head"


def main() -> int:
    root = Path(sys.argv[1])
    breaches = [*library_breaches(root), *head_breaches(root)]
    print("\n".join(breaches))
    return 1 if breaches else 0


sys.exit(main())
