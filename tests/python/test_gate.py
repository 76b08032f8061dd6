# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""What the package says about the C interface is what the headers say."""
import ctypes
import re
from pathlib import Path

import pytest
import quorvel
from quorvel import _native, _records

ROOT = Path(__file__).resolve().parents[2]
HEADERS = {path.relative_to(ROOT / "include/quorvel").as_posix(): re.sub(r"/\*.*?\*/", "", path.read_text(), flags=re.S)
           for path in (ROOT / "include").rglob("*.h")}

# The functions of the commands and of the link that the package does not call, and why.
LEFT_OUT = {
    r"abecs_cmd_\w+_builder_reset|abecs_cmd_builder_reset": "a builder is made for each request",
    r"abecs_cmd_gcd_response": "writes more than its destination may hold; abecs_cmd_gcd_response_sized does not",
    r"abecs_cmd_cex_response_get_trk\dinc|abecs_cmd_ebx_response_get_\w+|abecs_cmd_gtk_response_\w+":
        "the items are taken from the map by their ids",
    r"\w+_to_string": "enumerations have names of their own",
    r"abecs_cmd_mlx|abecs_cmd_mlx_crc16": "Media.put() tells of progress, and takes bytes",
    r"abecs_pan_\w+2": "a text of Python's knows its length",
    r"abecs_comm_get_poll_time|abecs_comm_wake": "the package waits by itself, outside of the library",
    r"abecs_comm_check_busy|abecs_comm_get_cmd_id|abecs_comm_crc16": "for those who make packets themselves",
}


def declared():
    """Each function's prototype without the names of its parameters, by header."""
    for header, text in HEADERS.items():
        for result, name, rest in re.findall(r"KOR_API\s+([^;{}()]*?)\s*(\w+)\(((?:[^;()]|\([^)]*\))*)\);", text):
            rest = re.sub(r"(?<=[\w*] )\w+(?=,|$)|(?<=\*)\w+(?=\))|^void$", "", " ".join(rest.split()))
            yield header, name, re.sub(r"\s+(?=[,*)])", "", f"{result} {name}({rest})")


def test_prototypes_are_those_of_the_headers_and_each_is_called():
    headers = {name: prototype for _, name, prototype in declared()}
    assert len(headers) > 500
    for line in _native.PROTOTYPES.split("\n")[1:-1]:
        assert line == headers[re.search(r"(\w+)\(", line)[1]]
    sources = "".join(path.read_text() for path in (ROOT / "python/quorvel").glob("*.py") if "proto" not in path.name)
    texts = set(re.findall(r'"(\w+)"', sources)) | {"new", "delete"}
    kinds = set(re.findall(r'Owned\("(\w+)"', sources))
    called = texts | {f"{kind}_{text}" for kind in kinds for text in texts}
    assert set(_native._functions) - called == set()


def test_every_function_of_the_commands_and_of_the_link_is_there_or_left_out_for_a_reason():
    wanted = {name for header, name, _ in declared() if header.startswith("abecs/cmd/") or header in (
        "abecs/comm.h", "abecs/line.h", "abecs/observer.h", "abecs/pan.h")}
    left = {name for name in wanted if any(re.fullmatch(names, name) for names in LEFT_OUT)}
    assert wanted - left == wanted & set(_native._functions)
    for names in LEFT_OUT:
        assert any(re.fullmatch(names, name) for name in left), names


def leaves(kind, offset=0):
    for name, member in kind._fields_:
        place = offset + getattr(kind, name).offset
        yield from leaves(member, place) if hasattr(member, "_fields_") else {(place, name)}


def test_records_have_the_layout_that_the_compiler_gives_them():
    compared = 0
    for block in (ROOT / "tests/gates/record_layouts.txt").read_text().split("\n\n"):
        name = re.search(r"(?:struct|union) (\w+)\n", block)
        if name is None or name[1] not in _records.RECORDS:
            continue
        made = _records.RECORDS[name[1]]
        there = re.findall(r"^ *(\d+) \| *(?! |struct|union)[^\n]*?(\w+)$", block, re.M)
        assert set(leaves(made)) == {(int(offset), member) for offset, member in there}, name[1]
        assert ctypes.sizeof(made) == int(re.search(r"sizeof=(\d+)", block)[1])
        compared += 1
    assert compared >= 25


@pytest.mark.parametrize("prefix, kind", [
    ("ABECS_RSP_STAT_ST_", quorvel.Status), ("KOR_RESULT_", quorvel.Code), ("ABECS_RSP_DATID_PP_", quorvel.ItemId),
    ("ABECS_SPE_MTHD_DAT_", quorvel.DataMethod), ("ABECS_SPE_MTHD_PIN_", quorvel.PinMethod),
    ("ABECS_LINK_EVENT_", quorvel.EventType), ("ABECS_MK_TYPE_", quorvel.MasterKeyType),
    ("ABECS_WK_PAN_TYPE_", quorvel.WorkingKeyType), ("ABECS_PP_EVENT_", quorvel.CexEvent),
    ("ABECS_CMD_CKE_EVENT_", quorvel.CkeEvent), ("ABECS_CMD_GCR_CARD_TYPE_", quorvel.CardType),
    ("ABECS_CMD_GCR_STATCHIP_", quorvel.ChipStatus)])
def test_enumerations_are_those_of_the_headers(prefix, kind):
    there = {name: int(number, 0) for name, number in
             re.findall(rf"\b{prefix}(\w+) = (-?\w+)", "".join(HEADERS.values())) if not name.endswith("99")}
    assert sorted(there.values()) == sorted(kind)
    if kind not in (quorvel.CexEvent, quorvel.CkeEvent, quorvel.CardType):  # these have words of their own
        assert there == {member: int(value) for member, value in kind.__members__.items()}


def test_what_may_be_repeated_is_what_the_guide_says():
    def words(repeat):
        return f"from {repeat.first}" if repeat.advice is quorvel.Advice.FROM_START else repeat.advice.value
    rows = re.findall(r"^\| ((?:[A-Z]{3}(?:, )?)+) \| (\w+(?: [A-Z]{3})?) \| (\w+(?: [A-Z]{3})?) \|",
                      (ROOT / "docs/cpp.md").read_text(), re.M)
    said = {command: row[1:] for row in rows for command in row[0].split(", ")}
    assert len(said) == 39
    for command, expected in said.items():
        assert expected == tuple(words(quorvel.repeat_safety(command, failure))
                                 for failure in (quorvel.Failure.REFUSED, quorvel.Failure.LOST)), command
        assert words(quorvel.repeat_safety(command, quorvel.Failure.NOT_SENT)) == "again"
    assert words(quorvel.repeat_safety("XYZ", quorvel.Failure.REFUSED)) == "never"
    errors = (quorvel.Refused("GCX", quorvel.Status.TIMEOUT), quorvel.Ended(quorvel.Why.DEADLINE),
              quorvel.Error(quorvel.Code.ILLEGAL_ARGUMENT, ""), quorvel.Error(quorvel.Code.IO_ERROR, ""))
    assert [quorvel.failure_of(error).value for error in errors] == ["refused", "lost", "not sent", "lost"]
