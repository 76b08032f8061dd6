# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The commands that wait for somebody: Session.start(), or Session.run() with a deadline. Amounts are in the smallest
unit of the currency."""
import ctypes
import enum
from collections.abc import Sequence
from dataclasses import dataclass, field
from datetime import datetime
from typing import Any

from . import _native
from ._records import RECORDS, decoded, display, emv_data, field_bytes, hexadecimal, record, tag_list, wiped
from ._request import Call, Outcome, Owned, Poll, Seconds, Waiting, nothing, whole_seconds
from .errors import Status, illegal, malformed
from .immediate import ChipAnswer, FinalDecision, enumerated
from .items import ItemId, Items, fetch
from .secret import Octets, Secret, octets


class PinMethod(enum.IntEnum):
    """How a PIN is enciphered: under a working key that is sent along, or with DUKPT."""

    MK_WK_DES = 0
    MK_WK_TDES = 1
    DUKPT_DES = 2
    DUKPT_TDES = 3


class Decision(enum.IntEnum):
    """What a card has decided first. ONLINE: the acquirer is to be asked."""

    APPROVED = 0
    DECLINED = 1
    ONLINE = 2


class CardType(enum.IntEnum):
    MAGNETIC = 0
    CHIP = 3
    CONTACTLESS_MAGNETIC = 5
    CONTACTLESS = 6


class ChipStatus(enum.IntEnum):
    """How the last reading of a chip ended."""

    SUCCESS = 0
    ERROR_FALLBACK = 1
    NOT_SUPPORTED = 2


class Key(enum.IntEnum):
    ENTER = 0
    UP = 2
    DOWN = 3
    F1 = 4
    F2 = 5
    F3 = 6
    F4 = 7
    CLEAR = 8
    CANCEL = 13


class ChipCheck(enum.IntEnum):
    """What of the chip reader is awaited."""

    NONE = 0
    REMOVAL = 1
    INSERTION = 2


class CkeEvent(enum.IntEnum):
    KEY = 0
    MAGNETIC_CARD = 1
    CHIP = 2
    CONTACTLESS = 3


class CexEvent(enum.IntEnum):
    """The first are the keys of Key."""

    ENTER = Key.ENTER
    UP = Key.UP
    DOWN = Key.DOWN
    F1 = Key.F1
    F2 = Key.F2
    F3 = Key.F3
    F4 = Key.F4
    CLEAR = Key.CLEAR
    CANCEL = Key.CANCEL
    MAGNETIC_CARD = 90
    CHIP_REMOVED = 91
    CHIP_INSERTED = 92
    CONTACTLESS_NOT_DETECTED = 93
    CONTACTLESS_DETECTED = 94


@dataclass(frozen=True)
class TableRecord:
    """The record of the acquirer's tables that stands for the card's application."""

    acquirer: int
    record: str
    application_type: int | None


def _named(kind: type[enum.IntEnum], number: int | None) -> Any:
    """Makers have codes of their own: one that has no name stays a number."""
    return kind(number) if number in set(kind) else number


def _items_poll(call: Call, name: str, make: Any) -> Poll[Any]:
    """For an answer of items."""
    def poll(notice: Any) -> Outcome[Any]:
        status, items = fetch(lambda out: call(name, out, notice))
        return status, lambda: make(items)
    return poll


def _record_poll(call: Call, name: str, out: Any, make: Any) -> Poll[Any]:
    """For an answer in a record or a text, which is overwritten once it was taken over."""
    def take() -> Any:
        with wiped(out):
            return make(out)
    return lambda notice: (call(name, ctypes.byref(out), notice), take)


def _common(request: Owned, options: Any) -> None:
    """What the requests of parameters have in common."""
    request.put("emvdata", options.emv_data, lambda value: ctypes.byref(emv_data(value)))
    request.put("taglist", options.tags, lambda value: ctypes.byref(tag_list(value)))
    request.put("timeout", options.timeout, whole_seconds)


def _sale(request: Owned, options: Any) -> None:
    request.put("trntype", options.type)
    request.put("amount", options.amount)
    request.put("cashback", options.cashback)
    request.put("trncurr", options.currency)


@dataclass(frozen=True)
class CardAnswer:
    """What was read. Card data are not printed; `items` holds everything as it came."""

    type: CardType | int | None
    chip_status: ChipStatus | int | None
    table_record: TableRecord | None
    pan: str | None = field(repr=False)
    pan_sequence: int | None = field(repr=False)
    cardholder: str | None = field(repr=False)
    label: str | None
    expiry: str | None = field(repr=False)
    issuer_country: int | None
    track1: str | None = field(repr=False)
    track2: str | None = field(repr=False)
    track3: str | None = field(repr=False)
    emv_data: bytes | None = field(repr=False)
    device_type: int | None
    items: Items


def _table_record(text: str | None) -> TableRecord | None:
    if text is None:
        return None
    if not (text[:2].isdigit() and len(text) >= 4):
        raise malformed("the table record is none")
    return TableRecord(int(text[:2]), text[2:4], int(text[4:6]) if text[4:6].isdigit() else None)


def _card(items: Items) -> CardAnswer:
    return CardAnswer(
        type=_named(CardType, items.number(ItemId.CARDTYPE)),
        chip_status=_named(ChipStatus, items.number(ItemId.ICCSTAT)),
        table_record=_table_record(items.text(ItemId.AIDTABINFO)),
        pan=items.text(ItemId.PAN), pan_sequence=items.number(ItemId.PANSEQNO),
        cardholder=items.text(ItemId.CHNAME), label=items.text(ItemId.LABEL), expiry=items.text(ItemId.CARDEXP),
        issuer_country=items.number(ItemId.ISSCNTRY), track1=items.text(ItemId.TRK1INC),
        track2=items.text(ItemId.TRK2INC), track3=items.text(ItemId.TRK3INC), emv_data=items.bytes(ItemId.EMVDATA),
        device_type=items.number(ItemId.DEVTYPE), items=items)


@dataclass(frozen=True)
class Gcx(Waiting[CardAnswer]):
    """Takes a card: stripe, chip or contactless. `applications` are table records, the acquirer's two digits and the
    record's two characters each. `options` are five digits; `pan_mask` tells how many leading and trailing digits of
    the card number come in clear. `when` is now unless it is given."""

    id = "GCX"
    amount: int | None = None
    cashback: int | None = None
    currency: int | None = None
    acquirer: int | None = None
    application_types: Sequence[int] | None = None
    applications: Sequence[str] | None = None
    type: int | None = None
    options: str | None = None
    pan_mask: tuple[int, int] | None = None
    emv_data: Octets | None = field(default=None, repr=False)
    tags: Octets | None = None
    timeout: Seconds | None = None
    text: str | None = None
    when: datetime | None = None

    def _start(self, call: Call) -> Poll[CardAnswer]:
        when = self.when or datetime.now()
        with Owned("abecs_cmd_gcx_builder", f"{when:%y%m%d}".encode(), f"{when:%H%M%S}".encode()) as request:
            _sale(request, self)
            request.put("acqref", self.acquirer)
            if self.application_types is not None:
                types = _small_numbers(self.application_types)
                request("apptype", types, len(types))
            request.put("aidlist", self.applications, lambda records: display("".join(records)))
            request.put("gcxopt", self.options, display)
            request.put("panmask", self.pan_mask, lambda mask: b"%02d%02d" % tuple(mask))
            request.put("dspmsg", self.text, display)
            _common(request, self)
            call("abecs_cmd_gcx", request.handle)
        return _items_poll(call, "abecs_cmd_gcx_response", _card)


def _small_numbers(numbers: Sequence[int]) -> bytes:
    try:
        return bytes(numbers)
    except ValueError:
        raise illegal("a number does not fit into uint8_t") from None


@dataclass(frozen=True)
class _FirstAnswer:
    """What a card has decided first, and how the cardholder was verified."""

    decision: Decision
    signature: bool
    pin_offline: bool
    pin_errors: int
    pin_blocked: bool
    pin_online: bool
    pin_block: bytes | None = field(repr=False)
    ksn: bytes | None


@dataclass(frozen=True)
class GoxAnswer(_FirstAnswer):
    emv_data: bytes | None = field(repr=False)
    items: Items


def _gone(items: Items) -> GoxAnswer:
    result = items.text(ItemId.GOXRES) or ""
    if len(result) < 6 or not result.isdigit():
        raise malformed("the answer does not tell what the card has decided")
    first, signature, offline, errors, blocked, online = map(int, result[:6])
    return GoxAnswer(enumerated(Decision, first), bool(signature), bool(offline), errors, bool(blocked), bool(online),
                     items.bytes(ItemId.PINBLK), items.bytes(ItemId.KSN), items.bytes(ItemId.EMVDATA), items)


@dataclass(frozen=True)
class Gox(Waiting[GoxAnswer]):
    """After Gcx: runs the card's application up to its first decision, with the PIN if it must be. `options` are five
    digits, `risk` the ten bytes of the terminal's risk management."""

    id = "GOX"
    acquirer: int
    pin_method: PinMethod
    key_index: int
    working_key: Octets | None = field(default=None, repr=False)
    type: int | None = None
    amount: int | None = None
    cashback: int | None = None
    currency: int | None = None
    options: str | None = None
    text: str | None = None
    risk: Octets | None = None
    emv_data: Octets | None = field(default=None, repr=False)
    tags: Octets | None = None
    timeout: Seconds | None = None

    def _start(self, call: Call) -> Poll[GoxAnswer]:
        with Owned("abecs_cmd_gox_builder", self.acquirer, self.pin_method, self.key_index) as request:
            if self.working_key is not None:
                key = octets(self.working_key)
                request("wkenc", key, len(key))
            _sale(request, self)
            request.put("goxopt", self.options, display)
            request.put("dspmsg", self.text, display)
            request.put("trmpar", self.risk, lambda risk: octets(risk, 10))
            _common(request, self)
            call("abecs_cmd_gox", request.handle)
        return _items_poll(call, "abecs_cmd_gox_response", _gone)


@dataclass(frozen=True)
class FcxAnswer:
    decision: FinalDecision
    emv_data: bytes | None = field(repr=False)
    script_results: bytes | None = field(repr=False)
    items: Items


def _finished(items: Items) -> FcxAnswer:
    result = items.number(ItemId.FCXRES)
    if result is None:
        raise malformed("the answer does not tell what the card has decided")
    return FcxAnswer(enumerated(FinalDecision, result), items.bytes(ItemId.EMVDATA), items.bytes(ItemId.ISRESULTS),
                     items)


@dataclass(frozen=True)
class Fcx(Waiting[FcxAnswer]):
    """After Gox: hands the acquirer's answer to the card. `options` are four digits, of which a first one of 0 or 1
    tells that the acquirer was reached: then its response code is needed."""

    id = "FCX"
    options: str
    response_code: str | None = None
    emv_data: Octets | None = field(default=None, repr=False)
    tags: Octets | None = None
    timeout: Seconds | None = None

    def _start(self, call: Call) -> Poll[FcxAnswer]:
        with Owned("abecs_cmd_fcx_builder", display(self.options)) as request:
            request.put("arc", self.response_code, display)
            _common(request, self)
            call("abecs_cmd_fcx", request.handle)
        return _items_poll(call, "abecs_cmd_fcx_response", _finished)


@dataclass(frozen=True)
class GcrAnswer:
    """What was read; empty texts for what was not. Card data are not printed. `acquirer_data` and `acquirer_texts`
    come for the acquirers 1 and 2 only."""

    type: CardType | int
    chip_status: ChipStatus | int
    application_type: int
    acquirer: int
    record: str
    track1: str = field(repr=False)
    track2: str = field(repr=False)
    track3: str = field(repr=False)
    pan: str = field(repr=False)
    pan_sequence: int = field(repr=False)
    label: str
    service_code: int = field(repr=False)
    cardholder: str = field(repr=False)
    expiry: str = field(repr=False)
    extra: bytes = field(repr=False)
    issuer_country: int
    acquirer_data: str
    acquirer_texts: tuple[str, ...]


def _captured(out: Any) -> GcrAnswer:
    own = out.acquirer.acquirer1
    data, texts = {1: (own.acqRd01Data, (own.acqRd01Text1, own.acqRd01Text2)),
                   2: (out.acquirer.acqRd02Data, ())}.get(out.acqIdx, (b"", ()))
    return GcrAnswer(
        _named(CardType, out.cardType), _named(ChipStatus, out.statChip), out.appType, out.acqIdx,
        *map(decoded, (out.recIdx, out.track1, out.track2, out.track3, out.pan)), out.panSeqNum,
        decoded(out.appLabel), out.serviceCode, decoded(out.cardholderName),
        f"{out.expYear:02}{out.expMonth:02}{out.expDay:02}", bytes(out.extData)[:29], out.issuerCountry, decoded(data),
        tuple(map(decoded, texts)))


def _capture(call: Call) -> Poll[GcrAnswer]:
    return _record_poll(call, "abecs_cmd_gcr_response", RECORDS["AbecsCmdGcrResponse"](), _captured)


@dataclass(frozen=True)
class Gcr(Waiting[GcrAnswer]):
    """Takes a card, with fixed fields; Gcx does it with parameters."""

    id = "GCR"
    acquirer: int
    application_type: int
    amount: int = 0
    when: datetime | None = None
    tables_version: str = ""
    contactless: bool = False
    applications: Sequence[str] | None = None

    def _start(self, call: Call) -> Poll[GcrAnswer]:
        when = self.when or datetime.now()
        data = record(
            "AbecsCmdGcrData", acqIdxReq=self.acquirer, appTypReq=self.application_type, amount=self.amount,
            date=record("AbecsDate", year=when.year % 100, month=when.month, day=when.day),
            time=record("AbecsTime", hours=when.hour, minutes=when.minute, seconds=when.second),
            tabVer=display(self.tables_version), ctlsOn=self.contactless)
        records = None if self.applications is None else display("".join(self.applications))
        call("abecs_cmd_gcr", ctypes.byref(data), records)
        return _capture(call)


@dataclass(frozen=True)
class GcrAgain(Waiting[GcrAnswer]):
    """The same with nothing asked: the PIN pad takes what it has."""

    id = "GCR"

    def _start(self, call: Call) -> Poll[GcrAnswer]:
        call("abecs_cmd_gcr_empty")
        return _capture(call)


@dataclass(frozen=True)
class Risk:
    """The terminal's risk management: the floor limit, and the biased random selection's target percentage, threshold
    and highest percentage."""

    floor_limit: int = 0
    target: int = 0
    threshold: int = 0
    highest: int = 0


@dataclass(frozen=True)
class GocAnswer(_FirstAnswer):
    emv_data: bytes = field(repr=False)


def _went(out: Any) -> GocAnswer:
    return GocAnswer(enumerated(Decision, out.decision), out.signature, out.pinOffline, out.pinOfflineErrors,
                     out.pinBlocked, out.pinOnline, field_bytes(bytes(out.pinBlock), 16) if out.pinOnline else None,
                     field_bytes(bytes(out.ksn), 20) if out.pinOnline else None, bytes(out.emvData[:out.emvDataLen]))


@dataclass(frozen=True)
class Goc(Waiting[GocAnswer]):
    """After Gcr, whose acquirer it takes: runs the chip up to its first decision. `transaction_type` and `flag` are
    for acquirer 1, `acquirer_data` for acquirer 2. The values of `online_tags` come besides when a PIN was taken for
    the acquirer."""

    id = "GOC"
    acquirer: int
    pin_method: PinMethod
    key_index: int
    working_key: Octets = field(default=b"", repr=False)
    amount: int = 0
    cashback: int = 0
    listed: bool = False
    connected: bool = True
    risk: Risk | None = None
    tags: Octets = b""
    online_tags: Octets = b""
    transaction_type: int = 0
    flag: bool = False
    acquirer_data: str = ""

    def _start(self, call: Call) -> Poll[GocAnswer]:
        risk = self.risk or Risk()
        own = RECORDS["AbecsCmdGocAcquirer"]()
        if self.acquirer == 2:
            own.acqpr02 = record("AbecsCmdGocAcquirer2", data=display(self.acquirer_data))
        else:
            own.acqpr01 = record("AbecsCmdGocAcquirer1", transactionType=self.transaction_type, flag=self.flag)
        tags, online = hexadecimal(self.tags), hexadecimal(self.online_tags)
        data = record(
            "AbecsCmdGocData", amount=self.amount, cashback=self.cashback, exclist=int(self.listed),
            connect=self.connected, method=self.pin_method, keyidx=self.key_index, wkenc=hexadecimal(self.working_key),
            riskman=self.risk is not None, flrlimit=b"%08X" % risk.floor_limit, tpbrs=risk.target,
            thrbrs=b"%08X" % risk.threshold, mtpbrs=risk.highest, acqpr=own, tags1len=len(tags) // 2, tags1=tags,
            tags2len=len(online) // 2, tags2=online)
        with wiped(data):
            call("abecs_cmd_goc", self.acquirer, ctypes.byref(data))
        return _record_poll(call, "abecs_cmd_goc_response", RECORDS["AbecsCmdGocResponse"](), _went)


@dataclass(frozen=True)
class PinEntry:
    """One capture of a PIN: how many digits, and the prompt of at most 32 characters."""

    min: int
    max: int
    text: str


@dataclass(frozen=True)
class GpnAnswer:
    pin_block: bytes = field(repr=False)
    ksn: bytes


@dataclass(frozen=True)
class Gpn(Waiting[GpnAnswer]):
    """Takes a PIN, up to nine times as `entries` say, and gives it enciphered."""

    id = "GPN"
    method: PinMethod
    key_index: int
    pan: str = field(repr=False)
    entries: Sequence[PinEntry]
    working_key: Octets = field(default=b"", repr=False)

    def _start(self, call: Call) -> Poll[GpnAnswer]:
        if len(self.entries) > 9:
            raise illegal(f"{len(self.entries)} captures of a PIN are too many")
        data = record("AbecsCmdGpnCmdData", method=self.method, keyIdx=self.key_index,
                      wkEnc=hexadecimal(self.working_key), pan=display(self.pan), entryCount=len(self.entries))
        for place, entry in enumerate(self.entries):
            data.entries[place] = record("AbecsCmdGpnEntry", min=entry.min, max=entry.max, msg=display(entry.text))
        with wiped(data):
            call("abecs_cmd_gpn", ctypes.byref(data))
        return _record_poll(call, "abecs_cmd_gpn_response", RECORDS["AbecsCmdGpnRspData"](),
                            lambda out: GpnAnswer(field_bytes(out.pinBlk, 16), field_bytes(out.ksn, 20)))


@dataclass(frozen=True)
class Gcd(Waiting[Secret]):
    """Takes a number of at most 32 digits, with a prompt of the PIN pad's own."""

    id = "GCD"
    prompt: int
    min_digits: int
    max_digits: int
    timeout: Seconds | None = None

    def _start(self, call: Call) -> Poll[Secret]:
        call("abecs_cmd_gcd", self.prompt, self.min_digits, self.max_digits, whole_seconds(self.timeout))
        out = ctypes.create_string_buffer(33)

        def take() -> Secret:
            with wiped(out):
                return Secret(bytearray(out).partition(b"\0")[0])
        return lambda notice: (call("abecs_cmd_gcd_response_sized", out, len(out), notice), take)


@dataclass(frozen=True)
class Gky(Waiting[Key]):
    """Waits for a function key, CLEAR, CANCEL or ENTER."""

    id = "GKY"
    # The status tells the key.
    good = frozenset({Status.OK, Status.F1, Status.F2, Status.F3, Status.F4, Status.BACKSP, Status.CANCEL})

    def _start(self, call: Call) -> Poll[Key]:
        call("abecs_cmd_gky")

        def poll(notice: Any) -> Outcome[Key]:
            status = call("abecs_cmd_gky_response", notice)
            return status, lambda: Key(status)
        return poll


@dataclass(frozen=True)
class Mnu(Waiting[int]):
    """Shows a menu of up to 20 options and tells the number of the one that was chosen."""

    id = "MNU"
    options: Sequence[str]
    title: str = ""
    timeout: Seconds | None = None

    def _start(self, call: Call) -> Poll[int]:
        options = (ctypes.c_char * 25 * len(self.options))()
        for place, option in zip(options, map(display, self.options)):
            if len(option) > 24:
                raise illegal("an option of the menu has more than 24 characters")
            place.value = option
        call("abecs_cmd_mnu", whole_seconds(self.timeout), display(self.title), options, len(options))
        return _record_poll(call, "abecs_cmd_mnu_response", ctypes.c_uint32(), lambda out: out.value)


@dataclass(frozen=True)
class CkeAnswer:
    """`key` and `present` are there with their events; tracks come with a magnetic card, and are not printed."""

    event: CkeEvent
    key: Key | None = None
    track1: str | None = field(default=None, repr=False)
    track2: str | None = field(default=None, repr=False)
    track3: str | None = field(default=None, repr=False)
    present: bool | None = None


def _cke_event(out: Any) -> CkeAnswer:
    event = enumerated(CkeEvent, out.event)
    if event is CkeEvent.KEY:
        return CkeAnswer(event, key=enumerated(Key, out.what.key))
    if event is CkeEvent.MAGNETIC_CARD:
        tracks = out.what.tracks
        return CkeAnswer(event, None, *(decoded(text) or None for text in (
            tracks.track1, tracks.track2, tracks.track3)))
    return CkeAnswer(event, present=out.what.iccPresent)


@dataclass(frozen=True)
class Cke(Waiting[CkeAnswer]):
    """Waits for the first of the events that are asked for. Tracks come whole. `contactless` is not sent when it is
    None, for a PIN pad that does not know it."""

    id = "CKE"
    keys: bool = False
    stripe: bool = False
    chip: ChipCheck = ChipCheck.NONE
    contactless: bool | None = None

    def _start(self, call: Call) -> Poll[CkeAnswer]:
        call("abecs_cmd_cke", self.keys, self.stripe, self.chip, -1 if self.contactless is None else self.contactless)
        return _record_poll(call, "abecs_cmd_cke_response", RECORDS["AbecsCmdCkeOut"](), _cke_event)


@dataclass(frozen=True)
class CexAnswer:
    """Tracks come with a magnetic card, and are not printed; `items` holds everything as it came."""

    event: CexEvent
    track1: str | None = field(default=None, repr=False)
    track2: str | None = field(default=None, repr=False)
    track3: str | None = field(default=None, repr=False)
    items: Items = field(default_factory=Items, compare=False)


@dataclass(frozen=True)
class Cex(Waiting[CexAnswer]):
    """Waits for the first of the events that are asked for. Card numbers in tracks come masked: `pan_mask` tells how
    many leading and trailing digits are left. `options` are the six characters themselves, in place of the first
    four members."""

    id = "CEX"
    keys: bool = False
    stripe: bool = False
    chip: ChipCheck = ChipCheck.NONE
    contactless: bool = False
    timeout: Seconds | None = None
    pan_mask: tuple[int, int] | None = None
    options: str | None = None

    def _start(self, call: Call) -> Poll[CexAnswer]:
        options = b"%d%d%d%d00" % (self.keys, self.stripe, self.chip, self.contactless)
        if self.options is not None:
            options = display(self.options)
        timeout = None if self.timeout is None else _small_numbers([whole_seconds(self.timeout)])
        mask = None if self.pan_mask is None else _small_numbers(self.pan_mask)
        if mask is not None and len(mask) != 2:
            raise illegal("a mask of card numbers is of two numbers")
        call("abecs_cmd_cex", options, timeout, mask)

        def poll(notice: Any) -> Outcome[CexAnswer]:
            events = []

            def look(out: ctypes.c_void_p) -> int:
                status = call("abecs_cmd_cex_response", out, notice)
                if status == Status.OK:
                    events.append(_native.call("abecs_cmd_cex_response_get_event", out))
                return status
            status, items = fetch(look)
            return status, lambda: CexAnswer(CexEvent(events[0]), *map(items.text, (
                ItemId.TRK1INC, ItemId.TRK2INC, ItemId.TRK3INC)), items)
        return poll


@dataclass(frozen=True)
class Rmc(Waiting[None]):
    """Shows up to 32 characters until the card was taken out."""

    id = "RMC"
    text: str = ""

    def _start(self, call: Call) -> Poll[None]:
        call("abecs_cmd_rmc", display(self.text))
        return lambda notice: (call("abecs_cmd_rmc_response", notice), nothing)


class ChipOperation(enum.IntEnum):
    OFF = 0
    ON = 1
    EXCHANGE = 2
    VERIFY = 3


@dataclass(frozen=True)
class Chp(Waiting[bytes]):
    """Talks to a chip in a slot: switches it, hands it a command, or takes a PIN for it, for which the command is its
    four bytes of header. Of the answer leading bytes 30 are lost."""

    id = "CHP"
    slot: int
    operation: ChipOperation
    command: Octets = field(default=b"", repr=False)
    pin_format: int = 0
    text: str = ""

    def _start(self, call: Call) -> Poll[bytes]:
        request = record("AbecsCmdChpParam", slot=self.slot, oper=self.operation, chpCmd=hexadecimal(self.command),
                         pinFmt=self.pin_format, message=display(self.text))
        with wiped(request):
            call("abecs_cmd_chp", ctypes.byref(request))
        out = ctypes.create_string_buffer(515)

        def take() -> bytes:
            with wiped(out):
                return field_bytes(out.value, 0)
        return lambda notice: (call("abecs_cmd_chp_response", out, notice), take)


@dataclass(frozen=True)
class GenPin(Waiting[ChipAnswer]):
    """Takes a PIN that goes to a chip alone. `format` is a hexadecimal digit."""

    id = "GEN"
    slot: int
    header: Octets
    format: str
    min_digits: int
    max_digits: int
    text: str

    def _start(self, call: Call) -> Poll[ChipAnswer]:
        request = record("AbecsCmdGen0403CmdData", slot=self.slot, apduHeader=octets(self.header, 4).hex().encode(),
                         format=display(self.format), pinMinDigits=self.min_digits, pinMaxDigits=self.max_digits,
                         message=display(self.text))
        call("abecs_cmd_gen_04_03", ctypes.byref(request))
        return _record_poll(call, "abecs_cmd_gen_04_03_response", RECORDS["AbecsCmdGen0403RspData"](),
                            lambda out: ChipAnswer(out.status, field_bytes(out.sw, 4).hex().upper()))
