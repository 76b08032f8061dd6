#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Has a card inserted, swiped or tapped, and tells its number, masked: read_card.py [PORT]"""
import sys

from quorvel import Error, Gcx, Link

try:
    with Link(sys.argv[1] if len(sys.argv) > 1 else "/dev/ttyACM0") as link, link.open() as session:
        session.leave("THANK YOU")
        card = session.run(Gcx(amount=1234, pan_mask=(6, 4)), deadline=60).require()
        print(card.pan)
except Error as error:
    sys.exit(str(error))
