#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""ratios.py <json of Google Benchmark>: the library against the plain loops, by the medians."""
import json
import sys

AGAINST = {
    "library": ("bytes, each drained", "bytes, drained once", "whole frames"),
    "library, whole frames": ("whole frames",),
}


def medians(report):
    """Name of the exchange and way of doing it -> (time of one exchange, the host's CPU in it), in microseconds."""
    found = {}
    for row in report["benchmarks"]:
        if row.get("aggregate_name") == "median":
            if row["time_unit"] != "ns":
                sys.exit(f"{row['name']} is not told in nanoseconds")
            exchange, way = row["run_name"].split("/")[:2]
            found[exchange, way] = row["real_time"] / 1000, row["cpu_time"] / 1000
    return found


def main(path):
    with open(path, encoding="utf-8") as file:
        found = medians(json.load(file))
    print(f"{'exchange':9}{'way':23}{'us':>9}{'CPU us':>9}  rate, CPU against")
    for (exchange, way), (time, cpu) in sorted(found.items()):
        others = "; ".join(f"{other}: {found[exchange, other][0] / time:.2f}, {cpu / found[exchange, other][1]:.2f}"
                           for other in AGAINST.get(way, ()))
        print(f"{exchange:9}{way:23}{time:9.1f}{cpu:9.1f}  {others}")


main(sys.argv[1])
