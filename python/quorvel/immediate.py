# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The commands that the PIN pad answers at once. The headers in include/quorvel/abecs/cmd tell the limits of each
member; what is outside of them is raised as Error before anything is sent."""
import ctypes
import enum
from collections.abc import Sequence
from dataclasses import dataclass, field
from typing import Any

from . import _native
from ._records import RECORDS, decoded, display, field_bytes, hexadecimal, record, sized, tag_list, wiped
from ._request import Call, Immediate, Outcome, Owned, nothing
from .errors import malformed
from .items import ItemId, Items, fetch
from .secret import Octets, Secret, octets


class DataMethod(enum.IntEnum):
    """How data are enciphered: the kind of key with the cipher and its mode."""

    MK_WK_DES_ECB = 0
    MK_WK_DES_CBC = 1
    MK_WK_TDES_ECB = 10
    MK_WK_TDES_CBC = 11
    DUKPT_DAT1_ECB = 30
    DUKPT_DAT3_ECB = 50
    DUKPT_DAT3_CBC = 51
    TDES_RANDOM_ECB = 90
    TDES_RANDOM_CBC = 91


class FinalDecision(enum.IntEnum):
    """What the card, or the acquirer, has decided in the end."""

    APPROVED = 0
    DECLINED_BY_CARD = 1
    DECLINED_BY_ACQUIRER = 2


class MasterKeyType(enum.IntEnum):
    DES = 0
    TDES = 1


class WorkingKeyType(enum.IntEnum):
    DES = 0
    TDES = 1
    TDES_RSA = 2


@dataclass(frozen=True, eq=False)
class MasterKey:
    """A master key in clear, 16 bytes of which DES takes the first 8, and its index in the PIN pad."""

    type: MasterKeyType
    index: int
    key: Octets = field(repr=False)

    def _record(self) -> Any:
        return record("AbecsMk", type=self.type, idx=self.index, key=octets(self.key, 16))


@dataclass(frozen=True, eq=False)
class WorkingKey:
    """The working key for card numbers, in clear."""

    type: WorkingKeyType
    key: Secret

    def _record(self) -> Any:
        return record("AbecsWkPan", type=self.type, key=octets(self.key, 16))


def _block(value: Octets) -> bytes:
    return octets(value, 8)


def enumerated(kind: type[enum.IntEnum], number: int) -> Any:
    try:
        return kind(number)
    except ValueError:
        raise malformed(f"{number} is no {kind.__name__}") from None


@dataclass(frozen=True)
class Dsp(Immediate[None]):
    """Shows up to 32 characters."""

    id = "DSP"
    text: str

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_dsp", display(self.text)), nothing


@dataclass(frozen=True)
class Dex(Immediate[None]):
    """Shows up to 160 characters in lines."""

    id = "DEX"
    text: str

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_dex", display(self.text)), nothing


@dataclass(frozen=True)
class Dsi(Immediate[None]):
    """Shows a media file."""

    id = "DSI"
    file: str

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_dsi", display(self.file)), nothing


@dataclass(frozen=True)
class GinAnswer:
    """Of acquirer 0 the named members; of every other the fields as they stand, and the number behind them."""

    manufacturer: str = ""
    model: str = ""
    model_detail: str = ""
    contactless: bool = False
    system_version: str = ""
    protocol_version: str = ""
    manager_version: str = ""
    serial_number: str = ""
    texts: tuple[str, ...] = ()
    number: int | None = None
    dukpt: bool | None = None


@dataclass(frozen=True)
class Gin(Immediate[GinAnswer]):
    """Who the PIN pad is, as one acquirer sees it."""

    id = "GIN"
    acquirer: int = 0

    def _run(self, call: Call) -> Outcome[GinAnswer]:
        out = RECORDS["AbecsCmdGinOut"]()
        return call("abecs_cmd_gin", self.acquirer, ctypes.byref(out)), lambda: self._answer(out)

    def _answer(self, out: Any) -> GinAnswer:
        if self.acquirer == 0:
            *first, contactless, system, protocol, manager, serial = \
                (getattr(out.idx00, name) for name, _ in out.idx00._fields_)
            return GinAnswer(*map(decoded, first), contactless, *map(decoded, (system, protocol, manager, serial)))
        other = {2: out.idx02, 3: out.idx03}.get(self.acquirer, out.idxOther)
        texts = tuple(decoded(getattr(other, name)) for name, _ in other._fields_ if name.startswith("text"))
        return GinAnswer(texts=texts, number=other.number, dukpt=getattr(other, "dukpt", None))


@dataclass(frozen=True)
class GixAnswer:
    """What was asked for; None for what was not. `items` holds all of it."""

    items: Items
    serial: str | None
    part_number: str | None
    model: str | None
    manufacturer: str | None
    capabilities: str | None
    system_version: str | None
    protocol_version: str | None
    manager_version: str | None
    application_version: str | None


@dataclass(frozen=True)
class Gix(Immediate[GixAnswer]):
    """Items of the PIN pad's identity by their ids, of a family too; without any the PIN pad chooses."""

    id = "GIX"
    ids: Sequence[int] = ()

    def _run(self, call: Call) -> Outcome[GixAnswer]:
        ids = (ctypes.c_int32 * len(self.ids))(*self.ids)
        status, items = fetch(lambda out: call("abecs_cmd_gix", ids or None, len(ids), out))
        named = (ItemId.SERNUM, ItemId.PARTNBR, ItemId.MODEL, ItemId.MNNAME, ItemId.CAPAB, ItemId.SOVER, ItemId.SPECVER,
                 ItemId.MANVERS, ItemId.APPVERS)
        return status, lambda: GixAnswer(items, *map(items.text, named))


@dataclass(frozen=True)
class Gts(Immediate[str]):
    """The version of an acquirer's tables."""

    id = "GTS"
    acquirer: int

    def _run(self, call: Call) -> Outcome[str]:
        out = ctypes.create_string_buffer(11)
        return call("abecs_cmd_gts", self.acquirer, out), lambda: decoded(out.value)


@dataclass(frozen=True)
class Gdu(Immediate[str]):
    """The serial number of a DUKPT key, in hexadecimal digits. Method 2 is for DES keys, 3 for triple DES."""

    id = "GDU"
    method: int
    index: int

    def _run(self, call: Call) -> Outcome[str]:
        out = ctypes.create_string_buffer(21)
        return (call("abecs_cmd_gdu", self.method, self.index, out),
                lambda: field_bytes(out.value, 20).hex().upper())


@dataclass(frozen=True)
class Ged(Immediate[bytes]):
    """EMV data objects of the card in process, by their tags."""

    id = "GED"
    tags: Octets

    def _run(self, call: Call) -> Outcome[bytes]:
        out = RECORDS["AbecsEmvData"]()
        return (call("abecs_cmd_ged", ctypes.byref(tag_list(self.tags)), ctypes.byref(out)),
                lambda: bytes(out.data[:out.szData]))


@dataclass(frozen=True)
class Cng(Immediate[None]):
    """Changes EMV data of the transaction."""

    id = "CNG"
    emv_data: Octets = field(repr=False)

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_cng", hexadecimal(self.emv_data)), nothing


class Reached(enum.IntEnum):
    """Whether the acquirer was reached."""

    YES = 0
    NO = 1
    NOT_TRIED = 9


@dataclass(frozen=True)
class FncAnswer:
    decision: FinalDecision
    emv_data: bytes = field(repr=False)
    script_results: bytes = field(repr=False)


@dataclass(frozen=True)
class Fnc(Immediate[FncAnswer]):
    """After Goc: hands the acquirer's answer to the card, and tells its last decision."""

    id = "FNC"
    reached: int
    response_code: str = ""
    issuer_data: Octets = field(default=b"", repr=False)
    tags: Octets = b""

    def _run(self, call: Call) -> Outcome[FncAnswer]:
        issuer, tags = hexadecimal(self.issuer_data), hexadecimal(self.tags)
        data = record("AbecsCmdFncData", commSt=self.reached, arc=display(self.response_code),
                      issDatLen=len(issuer) // 2, issDat=issuer, tagsLen=len(tags) // 2, tags=tags)
        out = RECORDS["AbecsCmdFncResponse"]()
        return call("abecs_cmd_fnc", ctypes.byref(data), ctypes.byref(out)), lambda: FncAnswer(
            enumerated(FinalDecision, out.decision), field_bytes(out.emvData, 2 * out.emvDataLen),
            field_bytes(out.isResults, 2 * out.isResultsLen))


@dataclass(frozen=True)
class GtkAnswer:
    """Bytes, enciphered unless no method was given; with their keys' serial numbers, and the random key under the
    host's RSA key. `items` holds everything as it came."""

    enc_pan: bytes | None = field(repr=False)
    track1: bytes | None = field(repr=False)
    track2: bytes | None = field(repr=False)
    track3: bytes | None = field(repr=False)
    track1_ksn: bytes | None
    track2_ksn: bytes | None
    track3_ksn: bytes | None
    pan_ksn: bytes | None
    random_key: bytes | None = field(repr=False)
    items: Items = field(default_factory=Items, compare=False)


@dataclass(frozen=True)
class Gtk(Immediate[GtkAnswer]):
    """The tracks and the number of the last card: a digit each in `tracks`."""

    id = "GTK"
    tracks: str | None = None
    method: DataMethod | None = None
    iv: Octets | None = None
    open_digits: int | None = None
    key_index: int | None = None
    working_key: Octets | None = field(default=None, repr=False)
    modulus: Octets | None = None
    exponent: Octets | None = None

    def _run(self, call: Call) -> Outcome[GtkAnswer]:
        with Owned("abecs_cmd_gtk_builder") as request:
            request.put("tracks", self.tracks, display)
            request.put("mthd_dat", self.method)
            request.put("iv_cbc", self.iv, _block)
            request.put("opn_dig", self.open_digits)
            request.put("key_idx", self.key_index)
            if self.working_key is not None:
                with wiped(sized("AbecsCmdGtkWkEnc", self.working_key)) as key:
                    request("wk_enc", ctypes.byref(key))
            request.put("pbk_mod", self.modulus, lambda modulus: octets(modulus, 256))
            request.put("pbk_exp", self.exponent, lambda exponent: ctypes.byref(sized("AbecsCmdGtkPbkExp", exponent)))
            status, items = fetch(lambda out: call("abecs_cmd_gtk", request.handle, out))
        wanted = (ItemId.ENCPAN, ItemId.TRACK1, ItemId.TRACK2, ItemId.TRACK3, ItemId.TRK1KSN, ItemId.TRK2KSN,
                  ItemId.TRK3KSN, ItemId.ENCPANKSN, ItemId.ENCKRAND)
        return status, lambda: GtkAnswer(*map(items.bytes, wanted), items)


@dataclass(frozen=True)
class EbxAnswer:
    data: bytes | None = field(repr=False)
    ksn: bytes | None
    items: Items = field(default_factory=Items, compare=False)


@dataclass(frozen=True)
class Ebx(Immediate[EbxAnswer]):
    """Enciphers up to 256 bytes, in blocks of 8."""

    id = "EBX"
    data: Octets = field(repr=False)
    method: DataMethod
    key_index: int
    working_key: Octets | None = field(default=None, repr=False)
    iv: Octets | None = None

    def _run(self, call: Call) -> Outcome[EbxAnswer]:
        data = octets(self.data)
        with Owned("abecs_cmd_ebx_builder", data, len(data), self.method, self.key_index) as request:
            if self.working_key is not None:
                key = octets(self.working_key)
                request("wkenc", key, len(key))
            request.put("ivcbc", self.iv, _block)
            status, items = fetch(lambda out: call("abecs_cmd_ebx", request.handle, out))
        return status, lambda: EbxAnswer(items.bytes(ItemId.DATAOUT), items.bytes(ItemId.KSN), items)


@dataclass(frozen=True)
class Enb(Immediate[Secret]):
    """Enciphers one block of 8 bytes under a working key, which comes under a master key: method 0 or 1. The answer is
    16 hexadecimal digits."""

    id = "ENB"
    method: int
    key_index: int
    working_key: Octets = field(repr=False)
    data: Octets = field(repr=False)

    def _run(self, call: Call) -> Outcome[Secret]:
        request = record("AbecsCmdEnbCmdData", method=self.method, keyIdx=self.key_index,
                         wkEnc=hexadecimal(self.working_key), data=hexadecimal(self.data))
        with wiped(request), wiped(ctypes.create_string_buffer(17)) as out:
            status = call("abecs_cmd_enb", ctypes.byref(request), out)
            secret = Secret(field_bytes(out.value, 16).hex().upper())
        return status, lambda: secret


def _new_key(call: Call, name: str, *arguments: Any) -> Outcome[WorkingKey]:
    with wiped(RECORDS["AbecsWkPan"]()) as out:
        status = call(name, *arguments[:-1], ctypes.byref(out), arguments[-1])
        key = WorkingKey(WorkingKeyType(out.type), Secret(bytearray(out.key)))
    return status, lambda: key


@dataclass(frozen=True)
class Dwk1(Immediate[WorkingKey]):
    """A new working key for card numbers, made here and sent under a master key. With `on_link` the link deciphers card
    data with it. What the header says of its randomness holds here, too: where that matters use Dwk2."""

    id = "DWK"
    master_key: MasterKey
    on_link: bool = True

    def _run(self, call: Call) -> Outcome[WorkingKey]:
        with wiped(self.master_key._record()) as master:
            return _new_key(call, "abecs_cmd_dwk1", ctypes.byref(master), self.on_link)


@dataclass(frozen=True)
class Dwk2(Immediate[WorkingKey]):
    """The same, made by the PIN pad and sent over RSA."""

    id = "DWK"
    on_link: bool = True

    def _run(self, call: Call) -> Outcome[WorkingKey]:
        return _new_key(call, "abecs_cmd_dwk2", self.on_link)


def texts_of(found: Owned) -> list[str]:
    texts = []
    node = found("first")
    while node:
        texts.append(decoded(_native.call("kor_string_list_item", node)))
        node = _native.call("kor_string_list_next", node)
    return texts


@dataclass(frozen=True)
class Lmf(Immediate[list[str]]):
    """The names of the media files."""

    id = "LMF"

    def _run(self, call: Call) -> Outcome[list[str]]:
        with Owned("kor_string_list") as found:
            status, names = call("abecs_cmd_lmf", found.handle), texts_of(found)
        return status, lambda: names


@dataclass(frozen=True)
class Dmf(Immediate[None]):
    """Deletes media files."""

    id = "DMF"
    files: Sequence[str]

    def _run(self, call: Call) -> Outcome[None]:
        with Owned("kor_string_list") as names:
            for file in self.files:
                names("append", display(file))
            return call("abecs_cmd_dmf", names.handle), nothing


@dataclass(frozen=True)
class Mli(Immediate[None]):
    """Begins the load of a media file. Media.put() does all of it."""

    id = "MLI"
    file: str
    size: int
    crc: int
    type: int

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_mli", display(self.file), self.size, self.crc, self.type), nothing


@dataclass(frozen=True)
class Mlr(Immediate[None]):
    """Up to 995 bytes of a media file."""

    id = "MLR"
    data: bytes = field(repr=False)

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_mlr", self.data, len(self.data)), nothing


@dataclass(frozen=True)
class Mle(Immediate[None]):
    """Ends the load of a media file."""

    id = "MLE"

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_mle"), nothing


@dataclass(frozen=True)
class Tli(Immediate[None]):
    """Begins the load of an acquirer's tables. Tables.load() does all of it."""

    id = "TLI"
    acquirer: int
    version: str

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_tli", self.acquirer, display(self.version)), nothing


@dataclass(frozen=True)
class Tlr(Immediate[None]):
    """Up to 99 records, of 997 characters in all."""

    id = "TLR"
    records: Sequence[str]

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_tlr", "".join(self.records).encode("latin-1")), nothing


@dataclass(frozen=True)
class Tle(Immediate[None]):
    """Ends the load of tables, which count from now on."""

    id = "TLE"

    def _run(self, call: Call) -> Outcome[None]:
        return call("abecs_cmd_tle"), nothing


@dataclass(frozen=True)
class GenKeys(Immediate[str]):
    """Which keys there are, of a type and use: a character for each index, "1" where there is one."""

    id = "GEN"
    type: int
    use: int
    first: int = 0
    last: int = 99

    def _run(self, call: Call) -> Outcome[str]:
        asked = record("AbecsCmdGen02K3CmdData", keyType=self.type, keyUse=self.use, idxIni=self.first,
                       idxEnd=self.last)
        out = ctypes.create_string_buffer(101)
        return call("abecs_cmd_gen_02_k3", ctypes.byref(asked), out), lambda: decoded(out.value)


def _tags(call: Call, name: str, tags: Octets, digits: int) -> Outcome[bytes]:
    """The length counts bytes, or digits."""
    out = RECORDS["AbecsCmdGenTagsOut"]()
    return call(name, hexadecimal(tags), ctypes.byref(out)), lambda: field_bytes(out.data, out.len * digits)


@dataclass(frozen=True)
class GenCardData(Immediate[bytes]):
    """Data objects of the card that was read last."""

    id = "GEN"
    tags: Octets

    def _run(self, call: Call) -> Outcome[bytes]:
        return _tags(call, "abecs_cmd_gen_03_02", self.tags, 1)


@dataclass(frozen=True)
class GenChipData(Immediate[bytes]):
    """Data objects of the card in the chip reader."""

    id = "GEN"
    tags: Octets

    def _run(self, call: Call) -> Outcome[bytes]:
        return _tags(call, "abecs_cmd_gen_04_04", self.tags, 2)


@dataclass(frozen=True)
class GenEncrypted:
    ksn: bytes
    data: bytes = field(repr=False)


@dataclass(frozen=True)
class GenEncrypt(Immediate[GenEncrypted]):
    """Enciphers up to 128 bytes, in blocks of 8, under a key of the PIN pad."""

    id = "GEN"
    key_index: int
    data: Octets = field(repr=False)

    def _run(self, call: Call) -> Outcome[GenEncrypted]:
        digits = hexadecimal(self.data)
        block = record("AbecsCmdGen0303Data", size=len(digits), data=digits)
        out = RECORDS["AbecsCmdGen0303RspData"]()
        with wiped(block), wiped(record("AbecsCmdGen0303CmdData", idx=self.key_index, input=block)) as request:
            status = call("abecs_cmd_gen_03_03", ctypes.byref(request), ctypes.byref(out))
        return status, lambda: GenEncrypted(field_bytes(out.ksn, 20), field_bytes(out.data, out.dataLen))


@dataclass(frozen=True)
class SlotPower:
    """`answer_to_reset` is in hexadecimal digits: the first half of what the chip answered."""

    status1: int
    status2: int
    answer_to_reset: str


@dataclass(frozen=True)
class GenPower(Immediate[SlotPower]):
    """Switches a slot's power or asks for it: operations 1 to 4."""

    id = "GEN"
    operation: int
    slot: int

    def _run(self, call: Call) -> Outcome[SlotPower]:
        out = RECORDS["AbecsCmdGen0401RspData"]()
        request = record("AbecsCmdGen0401CmdData", oper=self.operation, slot=self.slot)
        return call("abecs_cmd_gen_04_01", ctypes.byref(request), ctypes.byref(out)), lambda: SlotPower(
            out.status1, out.status2, decoded(out.atr))


@dataclass(frozen=True)
class ChipAnswer:
    """The PIN pad's word on the exchange, the chip's status word in hexadecimal digits, and its data."""

    status: int
    sw: str
    data: bytes = field(default=b"", repr=False)


@dataclass(frozen=True)
class GenApdu(Immediate[ChipAnswer]):
    """A command to a chip: CLA, INS, P1 and P2, its data, and how many bytes of answer at most."""

    id = "GEN"
    slot: int
    header: Octets
    data: Octets = field(default=b"", repr=False)
    le: int = 256

    def _run(self, call: Call) -> Outcome[ChipAnswer]:
        data = hexadecimal(self.data)
        request = record("AbecsCmdGen0402CmdData", slot=self.slot, apduHeader=octets(self.header, 4).hex().encode(),
                         lc=len(data) // 2, apduData=data, le=self.le)
        out = RECORDS["AbecsCmdGen0402RspData"]()
        return call("abecs_cmd_gen_04_02", ctypes.byref(request), ctypes.byref(out)), lambda: ChipAnswer(
            out.status, field_bytes(out.sw, 4).hex().upper(), field_bytes(out.apduData, 2 * out.la))
