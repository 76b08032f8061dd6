#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""spoil_numbers.py <folder>: changes the last digit of whatever in its files could be a card number, but for those of the
standard cards and of the tests, so that it is none."""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).parent.parent
NUMBER = re.compile(rb"(?<!\d)[2-6]\d{12,18}(?!\d)")


def holds(number: bytes) -> bool:
    doubled = [digit - 48 if i % 2 == 0 else sum(divmod(2 * (digit - 48), 10)) for i, digit in enumerate(number[::-1])]
    return sum(doubled) % 10 == 0


known = {number for folder in ("simulator", "tests", "docs", "examples") for path in (ROOT / folder).rglob("*")
         if path.is_file() for number in NUMBER.findall(path.read_bytes())}
for path in Path(sys.argv[1]).iterdir():
    before = path.read_bytes()
    after = NUMBER.sub(lambda match: match[0] if match[0] in known or not holds(match[0])
                       else match[0][:-1] + bytes([48 + (match[0][-1] - 47) % 10]), before)
    if after != before:
        path.write_bytes(after)
