# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""A page for each file of this project that the guides link to and that is neither a guide nor a
header, so that the links lead somewhere in the reference, too: programs, tables, scenarios. Of a folder under examples/
each file gets one; of any other the page says what is in it.
"""
from pathlib import Path

from filter import ROOT, guides, links_of, page_id

LANGUAGES = {".c": "c", ".cpp": "cpp", ".h": "cpp", ".py": "py"}


def text_of(path: Path) -> str:
    code = path.read_text()
    return f"~~~~{{.{LANGUAGES.get(path.suffix, 'unparsed')}}}\n{code}\n~~~~\n"


def files_in(folder: Path) -> list:
    return sorted(path for path in folder.rglob("*") if path.is_file() and "__pycache__" not in path.parts
                  and path.suffix not in (".png", ".svg", ".md")
                  and not any(part.startswith(".") or part.endswith(".egg-info") for part in path.parts))


def write(out: Path):
    out.mkdir(parents=True, exist_ok=True)
    wanted = {there for page in guides() for there in links_of(page)
              if there.suffix not in (".md", ".svg") and ROOT / "include" not in there.parents}
    listed = {}
    for folder in [path for path in wanted if path.is_dir()]:
        listed[folder] = files_in(folder)
        if folder == ROOT / "examples" or ROOT / "examples" in folder.parents:
            wanted.update(listed[folder])
    for path in sorted(wanted):
        name = str(path.relative_to(ROOT))
        page = f"# {name} {{#{page_id(path)}}}\n\n"
        if path.is_dir():
            for one in listed[path]:
                inside = one.relative_to(path)
                page += f"- [{inside}](@ref {page_id(one)})\n" if one in wanted else f"- {inside}\n"
        else:
            page += text_of(path)
        (out / f"{page_id(path)}.md").write_text(page)

