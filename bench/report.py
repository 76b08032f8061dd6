#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""report.py <json of quorvel_bench> <json of quorvel_calls> [<page>]: the figures as tables, by the medians. With a
page, they take the places of its regions from <!-- figures NAME --> to <!-- end -->, all of which must be there."""
import json
import re
import sys

LIBRARY, WHOLE = "library", "library, whole frames"
STEPPED, FLOWING = "loop: bytes, each drained", "loop: bytes, drained once, bulk reads"
IDEAL = "loop: whole frames, no checks"
NOTE = ("The loop of whole frames is an ideal: it knows how much will come, nobody's checks are in it, and nothing of\n"
        "what arrives is looked at.")
REGION = re.compile(r"(<!-- figures (\w+) -->\n).*?(<!-- end -->)", re.DOTALL)


def medians(report):
    """Group, what and who -> time in microseconds, the host's CPU in it, and the line's use where that was measured; in
    the order of the program, which is not that of the interleaved repetitions."""
    found = {}
    for row in sorted(report["benchmarks"], key=lambda row: row["family_index"]):
        if row.get("aggregate_name") == "median":
            if row["time_unit"] != "ns":
                sys.exit(f"{row['name']} is not told in nanoseconds")
            found[tuple(row["run_name"].split("/")[:3])] = {
                "us": row["real_time"] / 1000, "cpu": row["cpu_time"] / 1000, "use": row.get("line_use")}
    return found


def group(found, name):
    """What -> who -> figures."""
    whats = {}
    for (of, what, who), figures in found.items():
        if of == name:
            whats.setdefault(what, {})[who] = figures
    return whats


def table(head, rows):
    rule = "|---|---|" + "---:|" * (len(head) - 2)
    return "\n".join(["| " + " | ".join(head) + " |", rule, *("| " + " | ".join(row) + " |" for row in rows)])


def exchanges(found):
    rows = []
    for what, ways in group(found, "exchange").items():
        for way in (LIBRARY, WHOLE, STEPPED, FLOWING, IDEAL):
            rates = [f"{ways[loop]['us'] / ways[way]['us']:.2f}" if way in (LIBRARY, WHOLE) else ""
                     for loop in (STEPPED, FLOWING, IDEAL)]
            rows.append([what, way, f"{ways[way]['us']:.0f}", f"{ways[way]['cpu']:.0f}", *rates])
    return table(["", "way", "µs", "host's CPU, µs", "rate against each drained", "against drained once",
                  "against whole frames"], rows) + "\n\n" + NOTE


def calls(counted):
    names = ["write", "tcdrain", "poll", "read", "clock_gettime", "malloc"]
    rows = []
    for key, numbers in counted.items():
        what, way = key.split("/")
        others = sum(number for name, number in numbers.items() if name not in names)
        rows.append([what, way, *(f"{number:g}" for number in [*(numbers[name] for name in names), others])])
    return table(["", "way", *names[:-1], "allocations", "others"], rows)


def for_each_parameter(counted):
    (few, first), (many, last) = ((int(key.split()[2]), numbers["malloc"]) for key, numbers in counted.items()
                                  if "parameter" in key)
    return (last - first) / (many - few)


def line(found):
    rows = []
    for what, ways in group(found, "line").items():
        for way in (LIBRARY, WHOLE, STEPPED):
            rate = "" if way == STEPPED else f"{ways[way]['use'] / ways[STEPPED]['use']:.3f}"
            rows.append([what, way, f"{ways[way]['use']:.3f}", rate])
    return table(["each way", "way", "line use", "rate against the loop's"], rows)


def comparison(found, name, base):
    """Time and CPU of each, and what they are of those of the base."""
    rows = []
    for what, whos in group(found, name).items():
        for who, figures in whos.items():
            rows.append([what, who, f"{figures['us']:.0f}", f"{figures['us'] / whos[base]['us']:.2f}",
                         f"{figures['cpu']:.0f}", f"{figures['cpu'] / whos[base]['cpu']:.2f}"])
    return table(["", "by", "µs", f"of {base}'s", "host's CPU, µs", f"of {base}'s"], rows)


def loading(found):
    times = {who: figures["us"] for who, figures in group(found, "load")["empty program"].items()}
    return {who: (time, time / times["libtomcrypt"]) for who, time in times.items()}


def load(found):
    return table(["", "linked to", "µs", "of libtomcrypt's"],
                 [["empty program", who, f"{time:.0f}", f"{ratio:.2f}"]
                  for who, (time, ratio) in loading(found).items()])


def cipher_cpu(found, way):
    return found["cipher", "encrypted", way]["cpu"] / found["cipher", "plain", way]["cpu"]


def cipher(found):
    return table(["", "way", "plain, CPU µs", "encrypted, CPU µs", "ratio"],
                 [["1024 bytes each way", way, *(f"{found['cipher', kind, way]['cpu']:.0f}" for kind in
                                                 ("plain", "encrypted")), f"{cipher_cpu(found, way):.2f}"]
                  for way in (LIBRARY, WHOLE)])


def lines(found):
    uses = [(what, whos[LIBRARY]["use"]) for what, whos in group(found, "lines").items()]
    return table(["lines", "way", "line use, mean", "rate of a line against one alone"],
                 [[what, LIBRARY, f"{use:.3f}", f"{use / uses[0][1]:.3f}"] for what, use in uses])


def wanted(found, counted):
    def row(what, measured, least=None, most=None):
        met = (least is None or measured >= least) and (most is None or measured <= most)
        limit = f"at least {least}" if least is not None else f"at most {most}"
        return [what, limit, f"{measured:.3f}", "yes" if met else "**no**"]
    ways_of = group(found, "exchange")

    def rate(what, way, loop):
        return ways_of[what][loop]["us"] / ways_of[what][way]["us"]
    by_size = group(found, "line").values()
    def slowest(way):
        return min(ways[way]["use"] / ways[STEPPED]["use"] for ways in by_size)
    return table(["", "wanted", "measured", "met"], [
        row("GIX: rate against the byte loop that drains each", rate("GIX", LIBRARY, STEPPED), least=4),
        row("GIX: host's CPU against that loop's", ways_of["GIX"][LIBRARY]["cpu"] / ways_of["GIX"][STEPPED]["cpu"],
            most=0.17),
        *(row(f"{what}: rate against the byte loop that drains each", rate(what, LIBRARY, STEPPED), least=0.95)
          for what in ("TLE", "DSP", "TLR")),
        *(row(f"{what}: rate against the byte loop that drains once", rate(what, LIBRARY, FLOWING), least=0.9)
          for what in ("TLE", "DSP", "TLR")),
        row("TLR: rate with whole frames against the loop of whole frames", rate("TLR", WHOLE, IDEAL), least=0.3),
        row("DSP: rate with whole frames against the loop of whole frames", rate("DSP", WHOLE, IDEAL), least=0.6),
        row("allocations of a TLE", counted[f"TLE/{LIBRARY}"]["malloc"], most=2),
        row("allocations for each parameter in a map", for_each_parameter(counted), most=3),
        row("rate at 19200 baud against the byte loop's, the lowest of all sizes", slowest(LIBRARY), least=0.98),
        row("the same with whole frames", slowest(WHOLE), least=0.98),
        row("host's CPU, encrypted against plain, 1 KB each way", cipher_cpu(found, LIBRARY), most=1.05),
        row("time to load the library, against libtomcrypt alone", loading(found)["libquorvel0"][1], most=1.3)])


def machine(context):
    return (f"{context['num_cpus']} processors of {context['mhz_per_cpu']} MHz; "
            f"the load was {context['load_avg'][0]:.1f} when the run began.")


def main(timed, counted, page=None):
    with open(timed, encoding="utf-8") as file:
        report = json.load(file)
    with open(counted, encoding="utf-8") as file:
        counts = json.load(file)
    if any(numbers["write"] < 1 for numbers in counts.values()):
        sys.exit("the calls of the library were not counted")
    found = medians(report)
    regions = {
        "machine": machine(report["context"]), "wanted": wanted(found, counts), "exchange": exchanges(found),
        "calls": calls(counts) + f"\n\n{for_each_parameter(counts):g} allocations for each parameter of a map.", "line": line(found), "lines": lines(found),
        "cipher": cipher(found), "modbus": comparison(found, "modbus", "libmodbus"),
        "key": comparison(found, "key", "libtomcrypt"), "load": load(found)}
    if page is None:
        print("\n\n".join(f"{name}\n\n{text}" for name, text in regions.items()))
        return
    with open(page, encoding="utf-8") as file:
        text = file.read()
    if sorted(match[2] for match in REGION.finditer(text)) != sorted(regions):
        sys.exit(f"{page} does not have the regions {', '.join(regions)}")
    with open(page, "w", encoding="utf-8") as file:
        file.write(REGION.sub(lambda match: f"{match[1]}\n{regions[match[2]]}\n\n{match[3]}", text))


if __name__ == "__main__":
    main(*sys.argv[1:])
