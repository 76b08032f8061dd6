#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""reference.py <root>: the reference can be made, every name of the interface is documented, every exported function has
a man page without a fault, and no link leads nowhere. First a small tree shows that what this is for is found. Exits
with 77, to be skipped, where Doxygen is missing.
"""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(sys.argv[1]).resolve()
BUILD = ROOT / "docs/reference/build.py"
HEAD = "/* SPDX-License-Identifier: MIT */\n/* Copyright (c) 2026 the quorvel authors */\n"
HEADER = """#ifndef QUORVEL_KOR_THING_H
#define QUORVEL_KOR_THING_H
#include "quorvel/kor/defs.h"

/*
 * Things.
 *
 * 1. A thing of none raises ILLEGAL_ARGUMENT "'thing' is NULL".
 */

/* A thing, seen from outside: its `size` is 100% its own. */
typedef struct KorThing {
    int size;         /* in bytes */
    const char* name; /* what it is called */
} KorThing;

/*
 * Makes `count` things & more, <all> of them new. A name has at most 8 characters. IO_ERROR "read(%d) error: %d\\n" for
 * "a.b. c"; ILLEGAL_ARGUMENT "'name' is NULL". Those of kor_thing_end.
 */
KOR_API KorThing* kor_thing_new(int count, const char* name, const char* another_name_of_it, const char* a_third_one);

/* Ends a thing, or all. */
KOR_API void kor_thing_end(KorThing* thing);
KOR_API void kor_thing_end_all(void);

#endif
"""
TREE = {
    "CMakeLists.txt": "project(quorvel VERSION 1.2.3)\n",
    "cmake/exports.txt": "kor_thing_end\nkor_thing_end_all\nkor_thing_new\n",
    "cmake/additions.txt": "",
    "include/quorvel/quorvel.h": HEAD + '/*\n * All of it.\n */\n\n#include "quorvel/kor/thing.h"\n',
    "include/quorvel/kor/thing.h": HEAD + HEADER,
    "include/quorvel/thing.hpp": "// SPDX\n// (c)\n/// @file\n/// C++.\n\n/// All of it.\nnamespace quorvel {\n"
                                 "/// A pair.\n"
                                 "struct Pair {\n    int a, b;  ///< either 50%\n};\n}\n",
    "docs/README.md": "# Guides\n\n[one](one.md#what-is-what), [program](../examples/a.c), [header]"
                      "(../include/quorvel/kor/thing.h): `kor_thing_new`, `%d`, a <b>, **loud**, `two\nlines`, "
                      "[over\ntwo](one.md)\n",
    "docs/one.md": "# One\n\n## What is what\n\nText, [back](README.md).\n\n![A picture](p/a.svg)\n",
    "docs/p/a.svg": "<svg xmlns='http://www.w3.org/2000/svg'/>\n",
    "README.md": "# quorvel\n\n[Guides](docs/README.md)\n",
    "examples/a.c": "int a; // <&>\n",
}
# What is changed, and what is said of it.
FAULTS = [
    ("include/quorvel/kor/thing.h", "/* Ends a thing, or all. */\n", "\n", "kor_thing_end"),
    ("include/quorvel/kor/thing.h", " /* in bytes */", "", "size"),
    ("include/quorvel/kor/thing.h", "KOR_API void kor_thing_end_all", "\nKOR_API void kor_thing_end_all",
     "thing.h:28: error: Member kor_thing_end_all"),
    ("include/quorvel/thing.hpp", "/// A pair.\n", "\n", "thing.hpp:9: error: Compound quorvel::Pair"),
    ("include/quorvel/thing.hpp", "  ///< either 50%", "", "Member b"),
    ("cmake/exports.txt", "kor_thing_end\n", "kor_thing_end\nkor_thing_gone\n", "nothing is said of kor_thing_gone"),
    ("docs/README.md", "one.md#", "two.md#", "docs/README.md:3: error: unable to resolve reference to 'guide-docs-two"),
    ("docs/README.md", "#what-is", "#who-is", "unable to resolve reference to 'guide-docs-one_who-is-what'"),
]
# What the man page of kor_thing_new says, word for word.
MAN = """kor_thing_new - Makes count things & more, <all> of them new
#include <quorvel/quorvel.h>
KorThing* kor_thing_new(int count, const char* name,
const char* another_name_of_it, const char* a_third_one);
Makes count things & more, <all> of them new.
A name has at most 8 characters.
IO_ERROR "read(%d) error: %d\\n" for "a.b. c"; ILLEGAL_ARGUMENT "'name' is NULL". Those of kor_thing_end(3).
quorvel-kor-thing(3) tells what holds for all functions of its header, quorvel(3) what holds everywhere.
kor_thing_end(3), quorvel-kor-thing(3), quorvel(3)"""


def made(root: Path, out: Path) -> list:
    done = subprocess.run([sys.executable, BUILD, out, root], capture_output=True, text=True, check=False)
    said = (done.stdout + done.stderr).splitlines()
    return said if said or done.returncode == 0 else [f"build.py ended with {done.returncode}"]


def shown(page: Path) -> str:
    """A man page as it is read, and whatever groff warns of."""
    done = subprocess.run(["man", "-l", "--warnings=w", page], capture_output=True, text=True, check=False,
                          env={"MANWIDTH": "1000", "LC_ALL": "C.UTF-8", "PATH": "/usr/bin:/bin", "MANPAGER": "cat"})
    return done.stdout + done.stderr


def planted():
    """Faults of this gate itself."""
    with tempfile.TemporaryDirectory() as folder:
        root, out = Path(folder, "tree"), Path(folder, "out")
        for name, text in TREE.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text)
        if said := made(root, out):
            yield f"of a sound tree is said: {said}"
            return
        if shutil.which("man"):
            text = "\n".join(line.strip() for line in shown(out / "man3/kor_thing_new.3").splitlines()[1:-1]
                             if line.strip() and not line[0].isupper())
            if text != MAN:
                yield f"the man page of kor_thing_new reads:\n{text}\nexpected:\n{MAN}"
        if "kor_thing_end \\- Ends a thing, or all\n" not in (out / "man3/kor_thing_end.3").read_text() or \
                "kor_thing_end_all \\- Ends a thing, or all\n" not in (out / "man3/kor_thing_end_all.3").read_text():
            yield "what stands before two functions is not said of both"
        page = (out / "html/index.html").read_text().replace("strong>", "b>").replace("\n", " ")
        for wanted in ('href="guide-docs-one.html#guide-docs-one_what-is-what"', 'href="file-examples-a-c.html"', "%d",
                       'href="thing_8h.html"', "a &lt;b&gt;", "<b>loud</b>", "<code>two lines</code>", "over two</a>"):
            if wanted not in page:
                yield f"the first page has no {wanted}"
        for name, old, new, expected in FAULTS:
            path = root / name
            sound = path.read_text()
            assert sound.count(old) == 1, (name, old)
            path.write_text(sound.replace(old, new))
            said = made(root, out)
            if not any(expected in line for line in said):
                yield f"{name} with {new!r} for {old!r}: nothing is said of {expected}, but {said}"
            path.write_text(sound)


def breaches():
    yield from planted()
    with tempfile.TemporaryDirectory() as folder:
        out = Path(folder, "out")
        said = made(ROOT, out)
        yield from said
        if said:
            return
        sections = [".SH NAME", ".SH SYNOPSIS", ".SH DESCRIPTION", ".SH ERRORS", ".SH SEE ALSO"]
        for name in "".join((ROOT / f"cmake/{part}.txt").read_text() for part in ("exports", "additions")).split():
            page = (out / f"man3/{name}.3").read_text()
            if [line for line in page.splitlines() if line.startswith(".SH")] != sections:
                yield f"man3/{name}.3: has not the sections {', '.join(sections)}"
        if shutil.which("groff"):
            done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", *sorted((out / "man3").glob("*.3"))],
                                  capture_output=True, text=True, check=False)
            yield from done.stderr.replace(f"{out}/", "").splitlines()


if not shutil.which("doxygen"):
    print("reference: skipped, Doxygen is not installed")
    sys.exit(77)
found = list(breaches())
print("\n".join(found), end="\n" if found else "")
sys.exit(1 if found else 0)
