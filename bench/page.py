#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""page.py <json> [<document>]: what a browser that looks on costs the virtual PIN pad, and how soon its page shows what was done.

Exchanges with and without the page open take turns, so that what else the machine does meets both. QUORVEL_SIM and
QUORVEL_CLI name the programs.
"""
import json
import re
import statistics
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/web"))
from conftest import Page, PinPad, until  # noqa: E402

REGION = re.compile(r"(<!-- figures of the page -->\n).*?(<!-- end -->)", re.DOTALL)
SLICES = 11
SHOW = b"DSP032" + b"%-32s" % b"HELLO"
WATCH = """
    window.longest = 0;
    let last = performance.now();
    const look = (now) => { window.longest = Math.max(window.longest, now - last); last = now; requestAnimationFrame(look); };
    requestAnimationFrame(look);
"""


def folder():
    return Path(tempfile.mkdtemp(prefix="quorvel-bench-"))


def seconds(pin_pad, rounds):
    """Of one exchange."""
    start = time.perf_counter()
    pin_pad.sends(SHOW, rounds=rounds)
    return (time.perf_counter() - start) / rounds


def beside_a_browser(page, rounds, *options):
    """The median exchange with the page open, against that without."""
    pin_pad = PinPad(folder(), *options)
    times = {True: [], False: []}
    pin_pad.sends(b"OPN")
    for number in range(2 * SLICES):
        attached = number % 2 == 0
        page.open(pin_pad.url).connected() if attached else page.driver.get("about:blank")
        time.sleep(0.7)
        times[attached].append(seconds(pin_pad, rounds))
    pin_pad.stop()
    return statistics.median(times[True]) / statistics.median(times[False])


def clicks(page, pin_pad, count):
    """Milliseconds from a click to its digit on the display, while the till asks for a PIN."""
    took = []
    while len(took) < count:
        till = pin_pad.sale()
        page.shows("INSERT")
        page.type("i")
        page.shows("ENTER THE PIN")
        took += [page.click_to_display("*" * (i + 1)) for i in range(9)]
        page.type("i")
        till.wait(20)
    return sorted(took[:count])


def ten_thousand_lines(page, pin_pad):
    """The longest time between two pictures while as many lines come as the page keeps, in milliseconds."""
    page.script(WATCH)
    pin_pad.sends(SHOW, rounds=3400)
    until(lambda: page.script("return document.querySelectorAll('#lines li').length") >= 9900)
    return page.script("return window.longest")


def main():
    page = Page(folder())
    figures = {
        "exchange at 19200 with the page open, against without": beside_a_browser(page, 20, "--speed", "19200"),
        "exchange at 115200 with the page open, against without": beside_a_browser(page, 60, "--speed", "115200"),
        "exchange without a line's pace with the page open, against without": beside_a_browser(page, 300),
    }
    pin_pad = PinPad(folder())
    page.open(pin_pad.url).connected()
    pin_pad.sends(b"OPN")
    for what in ("an empty page", "10,000 lines"):
        if what != "an empty page":
            figures["longest time between two pictures while 10,000 lines come, ms"] = ten_thousand_lines(page, pin_pad)
        took = clicks(page, pin_pad, 54)
        figures[f"click to display on {what}, median ms"] = statistics.median(took)
        figures[f"click to display on {what}, 95 of 100 ms"] = took[int(len(took) * 0.95)]
    pin_pad.stop()
    page.driver.quit()
    Path(sys.argv[1]).write_text(json.dumps(figures, indent=1) + "\n")
    rows = "".join(f"| {name} | {value:.2f} |\n" for name, value in figures.items())
    table = "|  |  |\n|---|---:|\n" + rows
    print(table)
    if len(sys.argv) > 2:
        document = Path(sys.argv[2])
        text, count = REGION.subn(lambda match: f"{match[1]}\n{table}\n{match[2]}", document.read_text())
        assert count == 1, f"{document} has no place for them"
        document.write_text(text)


if __name__ == "__main__":
    main()
