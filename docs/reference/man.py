# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Man pages of section 3 from what Doxygen has read: one for each function that the library exports, one for each
header, with its types, and quorvel(3) with what holds everywhere.
"""
import re
import xml.etree.ElementTree as ET
from pathlib import Path

from filter import ROOT

EXPORTED = {part: (ROOT / f"cmake/{part}.txt").read_text().split() for part in ("exports", "additions")}
ALL = set(EXPORTED["exports"]) | set(EXPORTED["additions"])


def roff(text: str) -> str:
    return text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga").replace(
        "^", "\\(ha").replace("~", "\\(ti")


def inline(node, seen: set) -> str:
    """The text of an element, as roff; the functions that it names go into `seen`."""
    text = roff(node.text or "")
    for child in node:
        inner = inline(child, seen)
        name = "".join(child.itertext())
        if child.tag == "ref" and name.rstrip("()") in ALL:
            seen.add(name.rstrip("()"))
            text += f"\\fB{roff(name.rstrip('()'))}\\fP(3)"
        elif child.tag in ("computeroutput", "bold"):
            text += inner if "\\fB" in inner else f"\\fB{inner}\\fP"
        elif child.tag == "emphasis":
            text += f"\\fI{inner}\\fP"
        elif child.tag == "sp":
            text += " "
        elif child.tag in ("linebreak", "ndash", "mdash"):
            text += {"linebreak": " ", "ndash": "\\(en", "mdash": "\\(em"}[child.tag]
        elif child.tag not in BLOCKS:
            text += inner
        text += roff(child.tail or "")
    return text


BLOCKS = ("simplesect", "itemizedlist", "orderedlist", "verbatim", "programlisting", "parblock")


def line(text: str) -> str:
    """One input line of roff, which must not look like a request."""
    text = re.sub(r"\s+", " ", text).strip()
    return "\\&" + text if text.startswith((".", "'")) else text


class Text:
    """A description: its paragraphs as roff, and what it says of errors apart."""

    def __init__(self, *nodes):
        self.body, self.errors, self.seen = [], [], set()
        for node in nodes:
            if node is not None:
                for para in node.iter("para"):
                    if not any(para in list(block.iter("para")) for tag in BLOCKS for block in node.iter(tag)):
                        self.add(para, self.body)

    def add(self, para, out: list):
        words = line(inline(para, self.seen))
        if words:
            out += [".PP", words]
        for child in para:
            if child.tag == "simplesect" and child.findtext("title") == "Errors":
                for inner in child.findall("para"):
                    self.add(inner, self.errors)
            elif child.tag in ("itemizedlist", "orderedlist"):
                for number, item in enumerate(child.findall("listitem"), 1):
                    mark = "\\(bu" if child.tag == "itemizedlist" else f"{number}."
                    paras: list = []
                    for inner in item.findall("para"):
                        self.add(inner, paras)
                    out += [f".IP {mark} 4", *[".IP \"\" 4" if one == ".PP" else one for one in paras[1:]]]
            elif child.tag in ("verbatim", "programlisting"):
                code = child.text if child.tag == "verbatim" else "\n".join(
                    "".join(" " if part.tag == "sp" else part.text for part in one.iter()
                            if part.tag == "sp" or part.text) for one in child.findall("codeline"))
                out += [".PP", ".RS 4", ".nf", *[("\\&" if row[:1] in (".", "'") else "") + roff(row)
                                                for row in (code or "").strip("\n").split("\n")], ".fi", ".RE"]

    def brief(self) -> str:
        words = " ".join(one for one in self.body if not one.startswith("."))
        return words


def plain(node) -> str:
    return re.sub(r"\s+", " ", "".join(node.itertext())).strip() if node is not None else ""


def declaration(member) -> str:
    text = (member.findtext("definition") or "") + (member.findtext("argsstring") or "")
    return re.sub(r" ([*&]+) ?", r"\1 ", re.sub(r"\s+", " ", text)).strip() + ";"


def wrapped(text: str) -> list:
    """A declaration on lines of at most 78 characters, the arguments one below the other where it is too long."""
    if len(text) <= 78 or "(" not in text:
        return [text]
    head, arguments = text.split("(", 1)
    rows, row = [], head + "("
    for argument in re.findall(r"[^,]+(?:,|$)", arguments):
        argument = argument.strip()
        if len(row) + len(argument) > 77 and not row.endswith("("):
            rows.append(row.rstrip())
            row = "        "
        row += argument + " "
    return rows + [row.rstrip()]


def page_of(header: str) -> str:
    """quorvel/abecs/cmd/gin.h: quorvel-abecs-cmd-gin"""
    return header.removesuffix(".h").replace("/", "-") if header != "quorvel/quorvel.h" else "quorvel"


class Pages:
    def __init__(self, xml: Path, out: Path, version: str):
        self.xml, self.out, self.version, self.written = xml, out, version, set()

    def write(self, name: str, brief: str, sections: list):
        rows = [f'.TH "{roff(name)}" 3 "" "quorvel {self.version}" "quorvel"', ".nh", ".ad l", ".SH NAME",
                f"{roff(name)} \\- {line(roff(brief.rstrip('. ')))}"]
        for title, lines in sections:
            if lines:
                rows += [f".SH {title}", *(lines[1:] if lines[0] == ".PP" else lines)]
        (self.out / f"{name}.3").write_text("\n".join(rows) + "\n")
        self.written.add(name)

    def see(self, names) -> list:
        names = list(dict.fromkeys(names))
        return [f".BR {roff(name)} (3){',' if i + 1 < len(names) else ''}" for i, name in enumerate(names)]

    def types(self, compound) -> list:
        """The records and the enumerations of a header, with what is said of each member."""
        rows = []
        for member in compound.iter("memberdef"):
            if member.get("kind") == "enum":
                rows += self.type(re.sub(r"^@\d+", "", member.findtext("name")), member,
                                  [(value.findtext("name"), (value.findtext("initializer") or ""), value)
                                   for value in member.findall("enumvalue")])
            elif member.get("kind") in ("typedef", "define") and plain(member.find("briefdescription")):
                rows += self.type(member.findtext("name"), member, [])
        for inner in compound.findall("innerclass"):
            record = ET.parse(self.xml / f"{inner.get('refid')}.xml").getroot().find("compounddef")
            rows += self.type(inner.text, record, [
                (plain(member.find("type")) + " " + member.findtext("name") + (member.findtext("argsstring") or ""), "",
                 member) for member in record.iter("memberdef")
                if member.get("kind") == "variable"
                and "@" not in plain(member.find("type")) + member.findtext("name")])
        return rows

    def type(self, name: str, node, members: list) -> list:
        rows = [f".SS {roff(name) or 'Constants'}", *Text(node.find("briefdescription"),
                                                             node.find("detaileddescription")).body[1:]]
        for text, value, member in members:
            said = Text(member.find("briefdescription"), member.find("detaileddescription"))
            rows += [".TP", f"\\fB{roff(text)}\\fP{roff(' ' + value) if value else ''}", said.brief() or "\\&"]
        return rows

    def header(self, compound, header: str):
        text = Text(compound.find("briefdescription"), compound.find("detaileddescription"))
        functions = [member for member in compound.iter("memberdef") if member.findtext("name") in ALL]
        include = "quorvel/quorvel.h" if any(member.findtext("name") in EXPORTED["exports"] for member in functions) \
            else header
        said = [Text(member.find("briefdescription"), member.find("detaileddescription")) for member in functions]
        alike = [(one.body, one.errors) for one in said]
        for i, member in enumerate(functions):
            first, last = i, i
            while first > 0 and alike[first - 1] == alike[i]:
                first -= 1
            while last + 1 < len(functions) and alike[last + 1] == alike[i]:
                last += 1
            name = member.findtext("name")
            group = functions[first:last + 1]
            others = [one.findtext("name") for one in group if one is not member]
            synopsis = [".nf", f"#include <{include}>", ""]
            for one in group:
                synopsis += [roff(row) for row in wrapped(declaration(one))]
            errors = said[i].errors or [".PP", "None of its own."]
            self.write(name, plain(member.find("briefdescription")), [
                ("SYNOPSIS", synopsis + [".fi"]),
                ("DESCRIPTION", said[i].body),
                ("ERRORS", errors + [".PP", f"\\fB{roff(page_of(header))}\\fP(3) tells what holds for all functions of "
                                            "its header, \\fBquorvel\\fP(3) what holds everywhere."]),
                ("SEE ALSO", self.see([*others, *sorted(said[i].seen - {name, *others}), page_of(header), "quorvel"]))])
        listed = []
        for member in functions:
            listed += [".TP", f"\\fB{roff(member.findtext('name'))}\\fP(3)",
                       line(roff(plain(member.find("briefdescription"))))]
        self.write(page_of(header), plain(compound.find("briefdescription")), [
            ("SYNOPSIS", [f"#include <{header if header.endswith('additions.h') else include}>"]),
            ("DESCRIPTION", text.body),
            ("FUNCTIONS", listed), ("TYPES", self.types(compound)),
            ("SEE ALSO", self.see(["quorvel"] if header != "quorvel/quorvel.h" else sorted(self.written - ALL)))])


def write(xml: Path, out: Path, version: str) -> list:
    """Writes the pages; what is exported and has none is returned."""
    out.mkdir(parents=True, exist_ok=True)
    for old in out.glob("*.3"):
        old.unlink()
    pages = Pages(xml, out, version)
    headers = {}
    for entry in ET.parse(xml / "index.xml").getroot().findall("compound"):
        if entry.get("kind") == "file" and entry.findtext("name").endswith(".h"):
            compound = ET.parse(xml / f"{entry.get('refid')}.xml").getroot().find("compounddef")
            headers[re.sub(r"^.*include/", "", compound.find("location").get("file"))] = compound
    for header in sorted(headers, key=lambda one: one == "quorvel/quorvel.h"):
        pages.header(headers[header], header)
    return [f"cmake: nothing is said of {name}" for name in sorted(ALL - pages.written)]
