# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The C records that the package hands to the library, and what converts to and from their members."""
import ctypes
import re
from collections.abc import Iterator
from contextlib import contextmanager
from typing import Any

from . import _native
from .errors import illegal, malformed
from .secret import Octets, octets

# A line each; tests/python/test_gate.py compares them with what the compiler makes of the headers.
_RECORDS = """
AbecsEmvData: uint8_t[512] data, size_t szData
AbecsTagList: uint8_t[128] data, size_t szData
AbecsMk: AbecsMkType_E type, uint8_t idx, uint8_t[16] key
AbecsWkPan: AbecsWkPanType_E type, uint8_t[16] key
AbecsDate: uint8_t year, uint8_t month, uint8_t day
AbecsTime: uint8_t hours, uint8_t minutes, uint8_t seconds
AbecsRspParamValue: uint32_t size, char* data, bool owned
AbecsRspParamMapIt: char* map, uint16_t id, AbecsRspParamValue value
AbecsLinkEvent: int32_t type, char[4] cmdId, int32_t status, bool encrypted, size_t packetSize, size_t frameSize, \
int64_t duration, char* packet
AbecsCmdChpParam: int32_t slot, int32_t oper, char[521] chpCmd, int32_t pinFmt, char[33] message
AbecsCmdCkeTracks: uint8_t trk1Len, char[77] track1, uint8_t trk2Len, char[41] track2, uint8_t trk3Len, \
char[105] track3
union AbecsCmdCkeWhat: int32_t key, AbecsCmdCkeTracks tracks, bool iccPresent, bool ctlsPresent
AbecsCmdCkeOut: int32_t event, AbecsCmdCkeWhat what
AbecsCmdEnbCmdData: int32_t method, uint8_t keyIdx, char[33] wkEnc, char[17] data
AbecsCmdFncData: int32_t commSt, char[3] arc, size_t issDatLen, char[1999] issDat, size_t tagsLen, char[1999] tags
AbecsCmdFncResponse: uint32_t decision, uint32_t emvDataLen, char[513] emvData, uint32_t isResultsLen, \
char[101] isResults, uint32_t acqDataLen
AbecsCmdGcrData: uint8_t acqIdxReq, uint8_t appTypReq, uint64_t amount, AbecsDate date, AbecsTime time, \
char[11] tabVer, bool ctlsOn
AbecsCmdGcrAcquirer1: char[33] acqRd01Data, char[17] acqRd01Text1, char[17] acqRd01Text2
union AbecsCmdGcrAcquirer: AbecsCmdGcrAcquirer1 acquirer1, char[11] acqRd02Data
AbecsCmdGcrResponse: uint8_t cardType, int32_t statChip, uint8_t appType, uint8_t acqIdx, char[3] recIdx, \
uint8_t track1Len, char[77] track1, uint8_t track2Len, char[41] track2, uint8_t track3Len, char[105] track3, \
uint8_t panLen, char[20] pan, uint8_t panSeqNum, char[17] appLabel, uint16_t serviceCode, char[27] cardholderName, \
uint8_t expYear, uint8_t expMonth, uint8_t expDay, uint8_t[30] extData, uint16_t issuerCountry, \
AbecsCmdGcrAcquirer acquirer
AbecsCmdGen02K3CmdData: uint8_t keyType, uint8_t keyUse, uint8_t idxIni, uint8_t idxEnd
AbecsCmdGenTagsOut: uint16_t len, char[513] data
AbecsCmdGen0303Data: uint32_t size, char[257] data
AbecsCmdGen0303CmdData: uint8_t idx, AbecsCmdGen0303Data input
AbecsCmdGen0303RspData: char[21] ksn, uint32_t dataLen, char[257] data
AbecsCmdGen0401CmdData: int32_t oper, uint8_t slot
AbecsCmdGen0401RspData: uint8_t status1, uint32_t status2, uint8_t atrLen, char[73] atr
AbecsCmdGen0402CmdData: uint8_t slot, char[9] apduHeader, uint8_t lc, char[511] apduData, uint16_t le
AbecsCmdGen0402RspData: uint8_t status, char[5] sw, uint16_t la, char[513] apduData
AbecsCmdGen0403CmdData: uint8_t slot, char[9] apduHeader, char format, uint8_t pinMinDigits, uint8_t pinMaxDigits, \
char[33] message
AbecsCmdGen0403RspData: uint8_t status, char[5] sw
AbecsCmdGinIdx00: char[21] mnName, char[20] model, char[20] modelDetail, bool ctlsSup, char[21] soVer, \
char[5] specVer, char[17] manVers, char[21] serNum
AbecsCmdGinIdx02: char[9] text1, char[13] text2, char[14] text3, char[5] text4, char[4] text5, uint8_t number
AbecsCmdGinIdx03: char[7] text1, char[5] text2, char[5] text3, char[4] text4, char[4] text5, char[14] text6, \
char[5] text7, char[3] text8, bool dukpt, uint8_t number
AbecsCmdGinIdxOther: char[21] text1, char[14] text2, char[5] text3, char[4] text4, uint8_t number
union AbecsCmdGinOut: AbecsCmdGinIdx00 idx00, AbecsCmdGinIdx02 idx02, AbecsCmdGinIdx03 idx03, \
AbecsCmdGinIdxOther idxOther
AbecsCmdGocAcquirer1: uint8_t transactionType, bool flag
AbecsCmdGocAcquirer2: char[33] data
union AbecsCmdGocAcquirer: AbecsCmdGocAcquirer1 acqpr01, AbecsCmdGocAcquirer2 acqpr02
AbecsCmdGocData: uint64_t amount, uint64_t cashback, uint8_t exclist, bool connect, int32_t method, uint8_t keyidx, \
char[33] wkenc, bool riskman, char[9] flrlimit, uint8_t tpbrs, char[9] thrbrs, uint8_t mtpbrs, \
AbecsCmdGocAcquirer acqpr, uint16_t tags1len, char[257] tags1, uint16_t tags2len, char[257] tags2
AbecsCmdGocResponse: uint8_t decision, bool signature, bool pinOffline, uint8_t pinOfflineErrors, bool pinBlocked, \
bool pinOnline, uint8_t[16] pinBlock, uint8_t[20] ksn, uint16_t emvDataLen, uint8_t[512] emvData
AbecsCmdGpnEntry: uint8_t min, uint8_t max, char[33] msg
AbecsCmdGpnCmdData: int32_t method, uint8_t keyIdx, char[33] wkEnc, char[20] pan, uint8_t entryCount, \
AbecsCmdGpnEntry[9] entries
AbecsCmdGpnRspData: char[17] pinBlk, char[21] ksn
AbecsCmdGtkWkEnc: uint32_t size, uint8_t[16] data
AbecsCmdGtkPbkExp: uint32_t size, uint8_t[3] data
"""


def _parse(lines: str) -> dict[str, Any]:
    records: dict[str, Any] = {}

    def member(text: str) -> tuple[str, Any]:
        kind, name = text.rsplit(" ", 1)
        base, count = re.fullmatch(r"([\w*]+)(?:\[(\d+)\])?", kind).groups()  # type: ignore[union-attr]
        found = records.get(base) or _native.c_type(base)
        found = ctypes.c_void_p if base == "char*" else found
        return name, found * int(count) if count else found

    for line in lines.strip().splitlines():
        head, members = line.split(": ")
        base = ctypes.Union if head.startswith("union ") else ctypes.Structure
        name = head.removeprefix("union ")
        records[name] = type(name, (base,), {"_fields_": [member(text) for text in members.split(", ")]})
    return records


RECORDS = _parse(_RECORDS)


def record(name: str, /, **members: Any) -> Any:
    """A record with these members, which must fit: ctypes would cut numbers, and C texts without room for a NUL."""
    made = RECORDS[name]()
    for member, value in members.items():
        _set(made, member, value)
    return made


def _set(made: Any, member: str, value: Any) -> None:
    descriptor = getattr(type(made), member)
    if isinstance(value, (bytes, bytearray)):
        text = isinstance(getattr(made, member), bytes)
        if len(value) > descriptor.size - (text and descriptor.size > 1) or (text and b"\0" in value):
            raise illegal(f"{len(value)} bytes do not fit into '{member}'")
        ctypes.memmove(ctypes.byref(made, descriptor.offset), bytes(value), len(value))
    elif isinstance(value, (ctypes.Structure, ctypes.Union)):
        ctypes.memmove(ctypes.byref(made, descriptor.offset), ctypes.byref(value), ctypes.sizeof(value))
    else:
        _native.check_number(value, dict(made._fields_)[member], f"'{member}'")
        setattr(made, member, value)


@contextmanager
def wiped(made: Any) -> Iterator[Any]:
    """A record or buffer that holds a secret, overwritten at the end."""
    try:
        yield made
    finally:
        ctypes.memset(ctypes.byref(made), 0, ctypes.sizeof(made))


def emv_data(value: Octets) -> Any:
    return _sized("AbecsEmvData", "szData", value)


def tag_list(value: Octets) -> Any:
    return _sized("AbecsTagList", "szData", value)


def sized(name: str, value: Octets) -> Any:
    return _sized(name, "size", value)


def _sized(name: str, size: str, value: Octets) -> Any:
    data = octets(value)
    return record(name, data=data, **{size: len(data)})


def display(text: str) -> bytes:
    """A text for the display, in the PIN pad's characters. A line break is a carriage return there."""
    return text.replace("\r\n", "\r").replace("\n", "\r").encode("latin-1")


def decoded(value: bytes) -> str:
    return value.decode("latin-1")


def hexadecimal(value: Octets) -> bytes:
    return octets(value).hex().upper().encode()


def field_bytes(digits: bytes, width: int) -> bytes:
    """The bytes of a field of so many digits, of which the library has dropped leading pairs "30" as filling."""
    try:
        return bytes.fromhex(decoded(digits)).rjust(width // 2, b"\x30")
    except ValueError:
        raise malformed("a field is not of hexadecimal digits") from None
