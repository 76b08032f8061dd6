# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Where the links and the pictures of a page lead: for docs.py, and for what looks at the pages once they are installed."""
import re

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\[[^]]*\]\(([^)#\s]*)(?:#([^)\s]+))?\)|<img\b[^>]*?\ssrc=[\"']([^\"'#]*)[\"']", re.IGNORECASE)


def links(text: str):
    """Place, file and heading of each that does not lead out into the network; the file is empty for the page itself."""
    for link in LINK.finditer(FENCE.sub(lambda block: re.sub(r"[^\n]", " ", block[0]), text)):
        target = link[1] or link[3] or ""
        if not re.match(r"\w+:", target):
            yield link.start(), target, link[2]
