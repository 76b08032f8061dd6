#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""layers.py <root>: an include only ever points to the same layer or to one below. Prints each breach."""
import re
import sys
from pathlib import Path

# Each layer and what it may know beside itself. What crosses the line in words, the simulator, the command-line tool and
# the scripted peers know nothing of the library, but for the tool, which knows it by its interface for C++.
BELOW = {
    "core": set(),
    "crypt": {"core"},
    "data": {"core", "crypt"},
    "comm": {"core", "crypt", "data"},
    "cmd": {"core", "crypt", "data", "comm"},
    "peer": set(),
    "wire": set(),
    "hpp": {"all of the interface"},
    "cli": {"wire", "hpp"},
    "cli/commands": {"cli", "wire", "hpp"},
}
# The simulator's rooms, each with those that it may know beside what crosses the line.
ROOMS = {
    "files": set(),
    "watch": set(),
    "line": set(),
    "keys": {"files"},
    "cards": {"files", "keys"},
    "device": {"keys", "cards"},
    "cardholder": {"cards", "device"},
    "commands": {"keys", "cards", "device", "cardholder", "watch"},
    "faults": {"line"},
    "pin pad": {"keys", "cards", "device", "cardholder", "watch", "commands", "line", "faults"},
    "control": {"files", "keys", "cards", "device", "cardholder", "watch", "commands", "faults", "pin pad"},
    "amounts": {"cards", "device", "cardholder", "watch", "faults", "pin pad"},
    "scenario": {"amounts", "files", "keys", "cards", "device", "cardholder", "watch", "commands", "control", "pin pad"},
    "recording": {"keys", "cards", "device", "cardholder", "watch", "commands", "line", "faults", "control", "pin pad"},
    "exam": {"files", "cards", "device", "cardholder", "watch", "line", "faults", "scenario", "pin pad"},
    "face": {"cards", "device", "cardholder", "watch", "pin pad"},
    "web": {"keys", "cards", "device", "cardholder", "watch", "faults", "control", "scenario", "pin pad"},
}
PIN_PAD = ("engine", "pin_pad", "transmitter")
for room, known in ROOMS.items():
    BELOW[f"simulator/{room}"] = {"wire"} | {f"simulator/{each}" for each in known}
BELOW["simulator"] = {"wire"} | {f"simulator/{room}" for room in ROOMS}
FOLDERS = {
    "core": "core", "include/quorvel/kor": "core",
    "crypt": "crypt", "include/quorvel/crypt": "crypt",
    "abecs/data": "data", "abecs/comm": "comm", "abecs/cmd": "cmd", "include/quorvel/abecs/cmd": "cmd",
    "include/quorvel/hpp": "hpp",
    "wire": "wire", "cli": "cli", "cli/commands": "cli/commands", "simulator": "simulator",
} | {f"simulator/{room}": f"simulator/{room}" for room in ROOMS if room != "pin pad"}
LIBRARYS_CRYPTO = re.compile(r"tomcrypt")
STRANGERS = ("wire", "simulator", "cli", "peer")
INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]')


def layer_of(root: Path, name: str):
    """The layer of a file named from the root; None for one of no layer."""
    folder = name.rpartition("/")[0]
    if name.startswith("tests/support/peer"):
        return "peer"
    if name == "simulator/wire.h":
        return "wire"
    if folder == "simulator" and Path(name).stem in PIN_PAD:
        return "simulator/pin pad"
    if folder == "include/quorvel/abecs":
        source = Path(name).stem + ".cpp"
        return "comm" if (root / "abecs/comm" / source).exists() else "data"
    if name == "include/quorvel/quorvel.hpp":
        return "hpp"
    if folder == "include/quorvel":
        return "all of the interface"
    while folder and folder not in FOLDERS:
        folder = folder.rpartition("/")[0]
    return FOLDERS.get(folder)


def included(root: Path, includer: str, target: str):
    """The included file named from the root, or None for one of the system or of another library."""
    if target.startswith("quorvel/"):
        return "include/" + target
    for base in ("", includer.rpartition("/")[0] + "/"):
        if (root / (base + target)).exists():
            return base + target
    return None


def breaches(root: Path):
    seen = 0
    done = set()
    for path in sorted((root / "simulator").glob("*/*.cpp")):
        if path.parent.name not in ROOMS:
            yield f"{path.relative_to(root).as_posix()}:1: a room that has no place among the layers"
    for folder in [*FOLDERS, "include/quorvel/abecs", "tests/support"]:
        for path in sorted((root / folder).glob("**/*.[ch]*")):
            name = path.relative_to(root).as_posix()
            layer = layer_of(root, name)
            if layer is None or name in done:
                continue
            done.add(name)
            for number, line in enumerate(path.read_text().splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                seen += 1
                if layer.startswith(STRANGERS) and LIBRARYS_CRYPTO.search(match[1]):
                    yield f"{name}:{number}: the {layer} has a crypto library of its own, not {match[1]}"
                if layer.startswith("cli") and match[1].startswith("quorvel/") and match[1] != "quorvel/quorvel.hpp":
                    yield f"{name}:{number}: {layer} must not include {match[1]}: it uses the library by quorvel.hpp alone"
                    continue
                other = included(root, name, match[1])
                other_layer = layer_of(root, other) if other else None
                if other_layer and other_layer != layer and other_layer not in BELOW[layer]:
                    yield f"{name}:{number}: {layer} must not include {match[1]} of {other_layer}"
    if seen == 0:
        yield "no includes were found"


found = list(breaches(Path(sys.argv[1])))
print("\n".join(found))
sys.exit(1 if found else 0)
