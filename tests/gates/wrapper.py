#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""wrapper.py <root> <folder>: the wrapper in that folder calls every function that speaks to a PIN pad. Prints each that
it leaves out."""
import re
import sys
from pathlib import Path

FAMILIES = ("abecs_cmd_", "abecs_comm_", "abecs_pan_")
# Those that nobody misses, and why.
LEFT_OUT = {
    "abecs_cmd_mlx": "a load of a file made of MLI, MLR and MLE tells how far it has come",
    "abecs_cmd_mlx_crc16": "the same",
    "abecs_cmd_gcd_response": "abecs_cmd_gcd_response_sized does it safely",
    "abecs_cmd_ebx_response_get_dataout": "its size is in the map only",
    "abecs_cmd_ebx_response_get_ksn": "the same",
    "abecs_cmd_cex_response_get_trk1inc": "the map has it, with its size",
    "abecs_cmd_cex_response_get_trk2inc": "the same",
    "abecs_cmd_cex_response_get_trk3inc": "the same",
    "abecs_cmd_gcr_card_type_to_string": "enumerations have names of their own",
    "abecs_cmd_gcr_stat_chip_to_string": "the same",
    "abecs_comm_get_cmd_id": "what is sent is known",
    "abecs_comm_crc16": "of a frame, not of what is in it",
    "abecs_pan_encrypt": "abecs_pan_encrypt2 takes texts of any end",
    "abecs_pan_decrypt_track": "the same",
    "abecs_pan_identify": "the same",
}


def breaches(root: Path, folder: Path):
    names = {name for path in (root / "cmake").glob("*.txt") for name in path.read_text().split()}
    wanted = {name for name in names if name.startswith(FAMILIES) and not name.endswith("_builder_reset")}
    used = set(re.findall(r"\babecs_\w+", "\n".join(path.read_text() for path in folder.rglob("*.*p*"))))
    if len(wanted) < 100 or not used:
        yield "nothing to compare was found"
    yield from (f"{folder.name} leaves out {name}" for name in sorted(wanted - used - LEFT_OUT.keys()))
    yield from (f"{name} is no function" for name in sorted(LEFT_OUT.keys() - wanted))


found = list(breaches(Path(sys.argv[1]), Path(sys.argv[1]) / sys.argv[2]))
print("\n".join(found))
sys.exit(1 if found else 0)
