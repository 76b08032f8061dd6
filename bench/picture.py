#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""picture.py <json of quorvel_bench> <svg>: draws what an exchange takes, and how far a line is used."""
import json
import sys
from html import escape

from report import FLOWING, IDEAL, LIBRARY, STEPPED, WHOLE, group, medians

COLOURS = {LIBRARY: "#1f5fa8", WHOLE: "#5fa3e0", STEPPED: "#8a8a8a", FLOWING: "#b4b4b4", IDEAL: "#dcdcdc"}
WIDTH, LEFT, BAR, GAP, LENGTH = 760, 165, 16, 14, 500


class Picture:
    def __init__(self):
        self.parts = []
        self.y = 0

    def text(self, x, words, size=12, anchor="start"):
        self.parts.append(f'<text x="{x}" y="{self.y}" font-size="{size}" text-anchor="{anchor}">'
                          f'{escape(words)}</text>')

    def title(self, words):
        self.y += 30
        self.text(10, words, 14)
        self.y += 12

    def bars(self, name, values, tell):
        """One for each way, as long as its value, of which 1 is the longest."""
        for number, (way, value) in enumerate(values.items()):
            self.parts.append(f'<rect x="{LEFT}" y="{self.y}" width="{max(value * LENGTH, 1):.1f}" height="{BAR - 2}" '
                              f'fill="{COLOURS[way]}"/>')
            self.y += BAR - 4
            if number == 0:
                self.text(LEFT - 8, name, anchor="end")
            self.text(LEFT + value * LENGTH + 6, tell(way), 11)
            self.y += 4
        self.y += GAP

    def legend(self):
        self.y += 10
        for way, colour in COLOURS.items():
            self.parts.append(f'<rect x="{LEFT}" y="{self.y}" width="{BAR - 2}" height="{BAR - 2}" fill="{colour}"/>')
            self.y += BAR - 4
            self.text(LEFT + BAR + 4, way)
            self.y += 6

    def svg(self):
        height = self.y
        return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
                          f'viewBox="0 0 {WIDTH} {height}" font-family="sans-serif">',
                          f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>', *self.parts, "</svg>", ""])


def draw(found):
    picture = Picture()
    picture.legend()
    picture.title("Time of one exchange on a pseudo-terminal, in microseconds; each command to its own scale")
    for what, ways in group(found, "exchange").items():
        longest = max(figures["us"] for figures in ways.values())
        picture.bars(what, {way: ways[way]["us"] / longest for way in COLOURS}, lambda way: f"{ways[way]['us']:.0f}")
    picture.title("Use of a line of 19200 baud, by bytes each way; 1 is a line that never rests")
    for what, ways in group(found, "line").items():
        picture.bars(what, {way: ways[way]["use"] for way in COLOURS if way in ways},
                     lambda way: f"{ways[way]['use']:.3f}")
    return picture.svg()


def main(timed, out):
    with open(timed, encoding="utf-8") as file:
        found = medians(json.load(file))
    with open(out, "w", encoding="utf-8") as file:
        file.write(draw(found))


main(*sys.argv[1:])
