# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The parameters of an answer."""
import builtins
import ctypes
import enum
from collections.abc import Callable, Iterator, Mapping

from . import _native
from ._records import RECORDS
from .errors import malformed


class ItemId(enum.IntEnum):
    """What a parameter is. Those that end in 0 begin a family: the id of number n is that plus n, up to 99."""

    SERNUM = 0x8001
    PARTNBR = 0x8002
    MODEL = 0x8003
    MNNAME = 0x8004
    CAPAB = 0x8005
    SOVER = 0x8006
    SPECVER = 0x8007
    MANVERS = 0x8008
    APPVERS = 0x8009
    GENVERS = 0x800A
    KRNLVER = 0x8010
    CTLSVER = 0x8011
    MCTLSVER = 0x8012
    VCTLSVER = 0x8013
    AECTLSVER = 0x8014
    DPCTLSVER = 0x8015
    PUREVER = 0x8016
    DSPTXTSZ = 0x8020
    DSPGRSZ = 0x8021
    MFSUP = 0x8022
    MKDESP = 0x8030
    MKDESD = 0x8031
    MKTDESP = 0x8032
    MKTDESD = 0x8033
    DKPTDESP = 0x8034
    DKPTTDESP = 0x8035
    DKPTTDESD = 0x8036
    EVENT = 0x8040
    TRK1INC = 0x8041
    TRK2INC = 0x8042
    TRK3INC = 0x8043
    TRACK1 = 0x8044
    TRACK2 = 0x8045
    TRACK3 = 0x8046
    TRK1KSN = 0x8047
    TRK2KSN = 0x8048
    TRK3KSN = 0x8049
    ENCPAN = 0x804A
    ENCPANKSN = 0x804B
    KSN = 0x804C
    VALUE = 0x804D
    DATAOUT = 0x804E
    CARDTYPE = 0x804F
    ICCSTAT = 0x8050
    AIDTABINFO = 0x8051
    PAN = 0x8052
    PANSEQNO = 0x8053
    EMVDATA = 0x8054
    CHNAME = 0x8055
    GOXRES = 0x8056
    PINBLK = 0x8057
    FCXRES = 0x8058
    ISRESULTS = 0x8059
    BIGRAND = 0x805A
    LABEL = 0x805B
    ISSCNTRY = 0x805C
    CARDEXP = 0x805D
    MFNAME = 0x805E
    DEVTYPE = 0x8060
    ENCKEY = 0x8061
    TLRMEM = 0x8062
    ENCKRAND = 0x8063
    KSNDESP0 = 0x9000
    KSNTDESP0 = 0x9100
    KSNTDESD0 = 0x9200
    TABVER0 = 0x9300


class Items:
    """The parameters of an answer by their ids, in the order of the ids. What they hold is not printed."""

    def __init__(self, values: Mapping[int, builtins.bytes] | None = None) -> None:
        self._values = dict(sorted((values or {}).items()))

    def has(self, id: int) -> bool:
        return id in self._values

    def bytes(self, id: int) -> builtins.bytes | None:
        return self._values.get(id)

    def text(self, id: int) -> str | None:
        value = self._values.get(id)
        return None if value is None else value.decode("latin-1").rstrip(" ")

    def number(self, id: int) -> int | None:
        """A number in decimal digits."""
        value = self.text(id)
        if value is not None and not (value.isascii() and value.isdigit()):
            raise malformed(f"item 0x{id:04X} is no number")
        return None if value is None else int(value)

    def __iter__(self) -> Iterator[tuple[int, builtins.bytes]]:
        return iter(self._values.items())

    def __len__(self) -> int:
        return len(self._values)

    def __repr__(self) -> str:
        return "Items(" + ", ".join(f"0x{id:04X}: {len(value)} bytes" for id, value in self) + ")"


def fetch(command: Callable[[ctypes.c_void_p], int]) -> tuple[int, Items]:
    """Runs a command on a parameter map, and tells its status and what is in the map then."""
    handle = ctypes.c_void_p(_native.call("abecs_rsp_param_map_new"))
    try:
        return command(handle), Items(dict(_entries(handle)))
    finally:
        _native.call("kor_map_delete", ctypes.byref(handle))


def _entries(handle: ctypes.c_void_p) -> Iterator[tuple[int, builtins.bytes]]:
    entry = RECORDS["AbecsRspParamMapIt"]()
    more = _native.call("abecs_rsp_param_map_begin", handle, ctypes.byref(entry))
    while more:
        yield entry.id, ctypes.string_at(entry.value.data, entry.value.size) if entry.value.size else b""
        more = _native.call("abecs_rsp_param_map_next", ctypes.byref(entry))
