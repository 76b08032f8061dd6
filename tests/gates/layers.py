#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""layers.py <root>: an include only ever points to the same layer or to one below. Prints each breach."""
import re
import sys
from pathlib import Path

# Each layer and what it may know beside itself; what the programs share about the line, the simulator and the scripted
# peers know nothing of the library, and the command-line tool knows it by its interface only.
BELOW = {
    "core": set(),
    "crypt": {"core"},
    "data": {"core", "crypt"},
    "comm": {"core", "crypt", "data"},
    "cmd": {"core", "crypt", "data", "comm"},
    "wire": set(),
    "simulator": {"wire"},
    "peer": set(),
    "cli": {"wire", "simulator", "all of the interface"},
}
FOLDERS = {
    "core": "core", "include/quorvel/kor": "core",
    "crypt": "crypt", "include/quorvel/crypt": "crypt",
    "abecs/data": "data", "abecs/comm": "comm", "abecs/cmd": "cmd", "include/quorvel/abecs/cmd": "cmd",
    "wire": "wire", "simulator": "simulator", "cli": "cli",
}
FOREIGN = {"wire": r"tomcrypt", "simulator": r"tomcrypt", "peer": r"tomcrypt"}
INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]')


def layer_of(root: Path, name: str):
    """The layer of a file named from the root; None for one of no layer."""
    folder = name.rpartition("/")[0]
    if name.startswith("tests/support/peer"):
        return "peer"
    if folder == "include/quorvel/abecs":
        source = Path(name).stem + ".cpp"
        return "comm" if (root / "abecs/comm" / source).exists() else "data"
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
                if re.search(FOREIGN.get(layer, r"(?!)"), match[1]):
                    yield f"{name}:{number}: the {layer} has a crypto library of its own, not {match[1]}"
                other = included(root, name, match[1])
                other_layer = layer_of(root, other) if other else None
                if other_layer and other_layer != layer and other_layer not in BELOW[layer]:
                    yield f"{name}:{number}: {layer} must not include {match[1]} of {other_layer}"
    if seen == 0:
        yield "no includes were found"


found = list(breaches(Path(sys.argv[1])))
print("\n".join(found))
sys.exit(1 if found else 0)
