#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""build.py <out> [<root>]: makes <out>/html, the guides and the reference as one site, and <out>/man3. Whatever Doxygen
complains of, or is said of nothing, or leads nowhere, is printed as path:line: what, and makes the exit status 1.
"""
import html.parser
import os
import re
import shutil
import subprocess
import sys
import urllib.parse
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = Path(sys.argv[2]).resolve() if len(sys.argv) > 2 else HERE.parents[1]
os.environ["QUORVEL_ROOT"] = str(ROOT)

import filter as sources  # noqa: E402: reads the root above
import man  # noqa: E402
import pages  # noqa: E402


def version() -> str:
    return re.search(r"project\(quorvel VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]


def filtered(into: Path):
    shutil.rmtree(into, ignore_errors=True)
    for path in sources.headers() + sources.guides():
        copy = into / path.relative_to(ROOT)
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_text(sources.filtered(path))
    pages.write(into / "pages")
    images = into.parent / "images"
    shutil.rmtree(images, ignore_errors=True)
    images.mkdir()
    for path in [*(ROOT / "docs").rglob("*.png"), *(ROOT / "docs").rglob("*.svg")]:
        shutil.copy(path, images)


def doxygen(out: Path) -> list:
    """What Doxygen complains of, with the paths of the sources."""
    for old in ("html", "xml"):
        shutil.rmtree(out / old, ignore_errors=True)
    warnings = out / "warnings.txt"
    warnings.unlink(missing_ok=True)
    done = subprocess.run(["doxygen", str(HERE / "Doxyfile")], cwd=ROOT, capture_output=True, text=True, check=False,
                          env=os.environ | {"QUORVEL_DOCS": str(out), "QUORVEL_VERSION": version()})
    said = (warnings.read_text() if warnings.exists() else "") + done.stderr
    return [line.replace(f"{out}/input/", "") for line in said.splitlines() if line.strip()] or (
        [f"doxygen ended with {done.returncode}"] if done.returncode else [])


class Page(html.parser.HTMLParser):
    """The links of a page, and the names in it that links may lead to."""

    def __init__(self, text: str):
        super().__init__()
        self.links, self.names = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for key, value in attributes:
            if key in ("id", "name") and value:
                self.names.add(value)
            elif key in ("href", "src", "data") and value and tag in ("a", "img", "link", "script", "area", "object"):
                self.links.append((self.getpos()[0], value))


# What Doxygen links to and gives no anchor: members of records without a name, and classes of which none is shown.
UNNAMED = re.compile(r'(href="(?:(?:struct|union)\w+\.html)?)#(?:a[0-9a-f]{32}|nested-classes)"')


def mend(site: Path):
    """Has such links lead to the record's page."""
    names = {path.name: set(re.findall(r'\b(?:id|name)="([^"]+)"', path.read_text())) for path in site.glob("*.html")}
    for path in site.glob("*.html"):
        def led(link, here=path.name):
            target, part = re.match(r'href="([^#]*)#(.*)"', link[0]).groups()
            return link[0] if part in names.get(target or here, ()) else f'href="{target or here}"'
        text = path.read_text()
        mended = UNNAMED.sub(led, text)
        if mended != text:
            path.write_text(mended)


def broken(site: Path) -> list:
    parsed = {path.name: Page(path.read_text()) for path in site.glob("*.html")}
    found = []
    for name, page in sorted(parsed.items()):
        for line, link in page.links:
            target, _, part = urllib.parse.unquote(link).partition("#")
            if ":" in target:
                continue
            if target and not (site / target).exists():
                found.append(f"html/{name}:{line}: a link to {target}, which is not there")
            elif part and (target or name) in parsed and part not in parsed[target or name].names:
                found.append(f"html/{name}:{line}: a link to {link}, which {target or name} does not have")
    return found


def main(out: Path) -> int:
    out.mkdir(parents=True, exist_ok=True)
    filtered(out / "input")
    found = doxygen(out)
    if not found:
        mend(out / "html")
        found = man.write(out / "xml", out / "man3", version()) + broken(out / "html")
    print("\n".join(found), end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve()))
