#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""filter.py <file>: prints what Doxygen is given in place of a header or a guide. No line is added or taken away, so
that its warnings name the right one.

Headers in C keep their plain comments. One that stands right before a declaration documents it, and those that follow
it without a blank line between; one behind a member or an enumerator documents that; one with a blank line behind it
documents the header. The sentences of a function from the first one on that begins with the name of an error, or with
the text of one, become its errors. In C++ only `///` is documentation, as Doxygen has it anyway.

In guides, links lead to the pages of the reference and names of functions to what is said of them.
"""
import os
import re
import sys
from pathlib import Path

ROOT = Path(os.environ.get("QUORVEL_ROOT") or Path(__file__).resolve().parents[2])
FUNCTIONS = {name for part in ("exports", "additions") for name in (ROOT / f"cmake/{part}.txt").read_text().split()}
CODES = ("RUNTIME_ERROR", "ILLEGAL_ARGUMENT", "ILLEGAL_STATE", "INDEX_OUT_OF_BOUNDS", "MALLOC_ERROR", "IO_ERROR",
         "TIMEOUT_ERROR", "FILE_NOT_FOUND", "ENCODING_ERROR", "DEVICE_BUSY", "PERMISSION_DENIED", "PROTOCOL_ERROR",
         "CRYPT_ERROR")
# A sentence that tells of errors: at the start of a paragraph, or behind the end of another one.
ERRORS = re.compile(r"(?:^|(?<=[.:])\s+|\n\s*\n)"
                    r"(?=(?:In this order: |Further )?(?:%s)\b|\"|Errors?[ :]|The (?:same )?errors\b|"
                    r"Those of (?:abecs|kor|crypt)_)" % "|".join(CODES))
WORD = re.compile(r"\b_*(?:kor|abecs|crypt)_[a-z0-9_]+\b(?![*(/]|\.h)")


def escaped(text: str, marks: str = "*") -> str:
    """Text of which nothing is a command of Doxygen, HTML or Markdown, whose marks are given."""
    text = re.sub(rf"([\\%<>&#@${marks}])", r"\\\1", text)
    return re.sub(r"(?<![\w\\])_(?=\w)", r"\\_", text).replace('"', "&quot;")


def linked(text: str, marks: str = "*") -> str:
    """With the functions that it names made links."""
    def link(name):
        if name[0] not in FUNCTIONS:
            return escaped(name[0], marks)
        return f'\\ref {name[0]} "{name[0]}"'
    parts, at = [], 0
    for name in WORD.finditer(text):
        parts += [escaped(text[at:name.start()], marks), link(name)]
        at = name.end()
    return "".join(parts) + escaped(text[at:], marks)


def prose(text: str, marks: str = "*") -> str:
    """A comment's text with what stands in backquotes as code; or a guide's, whose own marks count: none is given."""
    spans = re.split(r"`([^`]+)`", text)
    return "".join(f"<code>{linked(span)}</code>" if i % 2 else linked(span, marks) for i, span in enumerate(spans))


def with_errors(text: str) -> str:
    start = next((found for found in ERRORS.finditer(text) if text[:found.end()].count('"') % 2 == 0), None)
    if not start or not text[:start.start()].strip():
        return text
    return text[:start.end()] + "\0" + text[start.end():]


def converted(comment: list, opening: str, function: bool) -> list:
    """The lines of a plain comment as those of one that Doxygen reads."""
    body = [re.sub(r"^\s*(/\*|\*/|\*)? ?", "", line) for line in comment]
    body[-1] = re.sub(r" ?\*/\s*$", "", body[-1])
    text = "\n".join(body)
    text = with_errors(text) if function else text
    lines = []
    # Lines further in than a list's are code, which stays as it is.
    for piece in re.split(r"((?:^ {4,}.*\n)+)", text, flags=re.MULTILINE):
        code = piece.startswith("    ") and piece.endswith("\n") and CODE.search(piece)
        lines.append(piece if code else prose(piece).replace("\0", "\\errors "))
    out = "".join(lines).split("\n")
    indent = re.match(r"\s*", comment[0])[0]
    if len(out) == 1:
        return [f"{indent}{opening} {out[0]} */"]
    first = f"{indent}{opening} {out[0]}".rstrip()
    middle = [f"{indent} * {line}".rstrip() for line in out[1:-1]]
    return [first, *middle, f"{indent} * {out[-1]}".rstrip(" *") + " */"]


CODE = re.compile(r"[;{}]")


class Header:
    """A header in C: its lines, of which each may be replaced by one."""

    def __init__(self, text: str, name: str):
        self.name = name
        self.lines = text.split("\n")
        self.out = list(self.lines)

    def is_blank(self, i: int) -> bool:
        return i >= len(self.lines) or not self.lines[i].strip()

    def end_of_comment(self, i: int) -> int:
        while "*/" not in self.lines[i]:
            i += 1
        return i

    def end_of_declaration(self, i: int) -> int:
        """The line on which the declaration that begins on line `i` ends."""
        if self.lines[i].lstrip().startswith("#"):
            while self.lines[i].endswith("\\"):
                i += 1
            return i
        depth = 0
        while i < len(self.lines):
            code = re.sub(r"/\*.*?(\*/|$)", "", self.lines[i]).rstrip()
            depth += sum(map(code.count, "{(")) - sum(map(code.count, "})"))
            if depth <= 0 and (code.endswith((";", ",", "}")) or depth < 0 or
                               self.lines[i + 1].lstrip().startswith("}")):
                return i
            i += 1
        return i

    def run(self, first: int, comment: list):
        """Says of the declarations behind the first one what the comment says."""
        said = " <p> ".join(re.sub(r"\s+", " ", part).strip() for part in
                            re.split(r"\n\s*\n", "\n".join(re.sub(r"^\s*(/\*\*|\*/|\*)? ?", "", line)
                                                            for line in comment)))
        said = re.sub(r" ?\*/$", "", said)
        named = WORD.search(self.lines[first])
        if named and named[0] in FUNCTIONS:
            said = f"\\copydoc {named[0]}"
        i = self.end_of_declaration(first) + 1
        while not self.is_blank(i) and not self.lines[i].lstrip().startswith(("/*", "}", "#", "KOR_END", "KOR_BEGIN")):
            end = self.end_of_declaration(i)
            if "/*" not in self.lines[i]:
                self.out[i] = re.sub(r"^(\s*)", lambda space: f"{space[1]}/** {said} */ ", self.lines[i], count=1)
            else:
                self.behind(i)
            i = end + 1
        return i

    def behind(self, i: int) -> int:
        """A comment behind code documents what stands before it; behind a brace, what the brace opens."""
        code, text = re.match(r"(.*?)\s*/\*(.*)$", self.lines[i]).groups()
        end = self.end_of_comment(i)
        lines = converted(["/*" + text] + self.lines[i + 1:end + 1], "/**" if code.endswith("{") else "/**<", False)
        if code.endswith("{"):
            self.out[i] = re.sub(r"^(\s*)", lambda space: f"{space[1]}{lines[0].strip()} ", code, count=1)
        else:
            self.out[i:end + 1] = [f"{code} {lines[0].strip()}"] + lines[1:]
        return end + 1

    def summary(self):
        """A header whose first comment documents a declaration is summed up by what that begins with."""
        first = next((i for i, line in enumerate(self.lines) if i > 1 and line.startswith("/*")), None)
        if first is None or self.is_blank(self.end_of_comment(first) + 1):
            return
        text = " ".join(re.sub(r"^\s*(/\*|\*/|\*)? ?", "", line)
                        for line in self.lines[first:self.end_of_comment(first) + 1])
        sentence = re.split(r"(?<=[.;])\s|\*/", text.strip())[0].rstrip(";. ") + "."
        self.out[1] = f"/** \\file {self.name} {prose(sentence)} */"

    def convert(self) -> str:
        self.summary()
        i = 2  # behind the licence
        while i < len(self.lines):
            line = self.lines[i]
            if re.match(r"#define QUORVEL_\w+_H$", line):
                self.out[i] = ""
            elif line.lstrip().startswith("/*") and "clang-format" not in line:
                i = self.before(i)
                continue
            elif "/*" in line and "*/" in line[line.index("/*"):] or re.search(r"\S\s*/\*", line):
                if "clang-format" not in line:
                    i = self.behind(i)
                    continue
            i += 1
        return "\n".join(self.out)

    def before(self, i: int) -> int:
        end = self.end_of_comment(i)
        comment = self.lines[i:end + 1]
        next_line = end + 1
        if self.is_blank(next_line):
            lines = converted(comment, "/**", False)
            lines[0] = lines[0].replace("/**", f"/** \\file {self.name}", 1)
            self.out[i:end + 1] = lines
            return next_line
        declaration = " ".join(self.lines[next_line:self.end_of_declaration(next_line) + 1])
        function = "KOR_API" in declaration and "(" in declaration
        lines = converted(comment, "/**", function)
        self.out[i:end + 1] = lines
        if self.lines[next_line].startswith("#if"):
            return next_line
        self.run(next_line, lines)
        return next_line


# One comment for several declarators, which Doxygen would take for one of them alone.
SEVERAL = re.compile(r"^(\s*)([\w:<> ]+) (\w+(?:, \w+)+);\s*///< (.*)$", re.MULTILINE)
ON = "/** For Session::run and Session::start: carries the request out on a line. */ "


def cpp(text: str) -> str:
    """A header in C++: its `///` comments with nothing in them that is a command unawares."""
    def line(found):
        return found[1] + (found[2] if re.match(r"\s*[@\\](file|namespace|tparam)\b", found[2]) else prose(found[2]))
    text = re.sub(r"((?<![/:\"])///<?)(.*)$", line, text, flags=re.MULTILINE)
    text = SEVERAL.sub(lambda found: found[1] + " ".join(f"/** {found[4]} */ {found[2]} {name};"
                                                         for name in found[3].split(", ")), text)
    return re.sub(r"^(\s*)(?=(?:[\w<>:, ]+ )?(?:start_)?on\(detail::Line& line\) const)",
                  lambda found: found[1] + ON, text, flags=re.MULTILINE)


def slug(text: str) -> str:
    return re.sub(r"[^a-z0-9]+", "-", text.lower()).strip("-")


def page_id(path: Path) -> str:
    """What a file's page is called in the reference."""
    relative = path.relative_to(ROOT)
    return ("guide-" if path.suffix == ".md" else "file-") + slug(str(relative.with_suffix("") if path.suffix == ".md"
                                                                     else relative))


def anchor(title: str) -> str:
    return re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")


LINK = re.compile(r"(!?)\[((?:[^]`]|`[^`]*`)*)\]\(([^)\s]+)\)")


def headers() -> list:
    return sorted((ROOT / "include/quorvel").rglob("*.h")) + sorted((ROOT / "include/quorvel").rglob("*.hpp"))


def guides() -> list:
    return sorted((ROOT / "docs").rglob("*.md")) + sorted(ROOT.glob("*.md"))


def links_of(page: Path) -> set:
    """The files that a guide links to."""
    text = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.MULTILINE | re.DOTALL)
    return {(page.parent / link[3].partition("#")[0]).resolve() for link in LINK.finditer(text)
            if not link[1] and "://" not in link[3] and not link[3].startswith("#")}


def guide(path: Path, text: str) -> str:
    here = page_id(path)

    def target(link: str) -> str:
        name, _, part = link.partition("#")
        there = (path.parent / name).resolve() if name else path
        if ROOT / "include" in there.parents:
            return str(there.relative_to(ROOT / "include"))
        return page_id(there) + (f"_{part}" if part else "")

    def inline(text: str) -> str:
        out, at = [], 0
        for link in LINK.finditer(text):
            out.append(prose(text[at:link.start()], ""))
            at = link.end()
            if "://" in link[3]:
                out.append(link[0])
            elif link[1]:  # pictures stand beside the pages
                out.append(f"![{escaped(link[2])}]({Path(link[3]).name})")
            else:
                # Doxygen takes the words of a link on one line only.
                words = escaped(re.sub(r"\s+", " ", link[2].replace("`", "")))
                out.append("\n" * link[2].count("\n") + f"[{words}](@ref {target(link[3])})")
        return "".join(out) + prose(text[at:], "")

    out, code, text_lines = [], False, []

    def end_of_text():
        if text_lines:
            out.append(inline("\n".join(text_lines)))
            text_lines.clear()

    for line in text.split("\n"):
        fence = line.lstrip().startswith("```")
        heading = re.match(r"(#+) (.*)$", line)
        if not (fence or code or heading or line.startswith(("    ", "<!--")) or re.match(r"\|[-|]+$", line)):
            text_lines.append(line)
            continue
        end_of_text()
        if fence or code:
            code = code != fence
            out.append(line)
        elif heading:
            name = here if heading[1] == "#" else f"{here}_{anchor(heading[2])}"
            out.append(f"{heading[1]} {prose(heading[2])} {{#{name}}}")
        else:
            out.append(line)
    end_of_text()
    return "\n".join(out)


def included(path: Path) -> str:
    """The name by which programs include a header."""
    return "quorvel/" + str(path).split("quorvel/", 1)[-1] if "quorvel/" in str(path) else path.name


def filtered(path: Path) -> str:
    text = path.read_text()
    if path.suffix == ".md":
        return guide(path.resolve(), text)
    return cpp(text) if path.suffix == ".hpp" else Header(text, included(path)).convert()


if __name__ == "__main__":
    sys.stdout.write(filtered(Path(sys.argv[1])))
