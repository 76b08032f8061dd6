# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""What the package raises, and the PIN pad's statuses."""
import enum


class Code(enum.IntEnum):
    """The codes of the library's errors. OK stands for what the package itself has raised."""

    OK = 0
    RUNTIME_ERROR = 1
    ILLEGAL_ARGUMENT = 2
    ILLEGAL_STATE = 3
    INDEX_OUT_OF_BOUNDS = 4
    MALLOC_ERROR = 5
    IO_ERROR = 6
    TIMEOUT_ERROR = 7
    FILE_NOT_FOUND = 8
    ENCODING_ERROR = 9
    DEVICE_BUSY = 10
    PERMISSION_DENIED = 11
    PROTOCOL_ERROR = 12
    CRYPT_ERROR = 13


class Status(enum.IntEnum):
    """RSP_STAT, the PIN pad's answer to a request. Status.TIMEOUT.name is "ST_TIMEOUT"."""

    NOTIFICATION = -2
    PROCESSING = -1
    OK = 0
    NOSEC = 3
    F1 = 4
    F2 = 5
    F3 = 6
    F4 = 7
    BACKSP = 8
    ERRPKTSEC = 9
    INVCALL = 10
    INVPARM = 11
    TIMEOUT = 12
    CANCEL = 13
    MANDAT = 19
    TABVERDIF = 20
    TABERR = 21
    INTERR = 40
    MCDATAERR = 41
    ERRKEY = 42
    NOCARD = 43
    PINBUSY = 44
    RSPOVRFL = 45
    ERRCRYPT = 46
    NOSAM = 51
    DUMBCARD = 60
    ERRCARD = 61
    CARDINVALIDAT = 67
    CARDPROBLEMS = 68
    CARDINVDATA = 69
    CARDAPPNAV = 70
    CARDAPPNAUT = 71
    ERRFALLBACK = 76
    INVAMOUNT = 77
    ERRMAXAID = 78
    CARDBLOCKED = 79
    CTLSMULTIPLE = 80
    CTLSCOMMERR = 81
    CTLSINVALIDAT = 82
    CTLSPROBLEMS = 83
    CTLSAPPNAV = 84
    CTLSAPPNAUT = 85
    CTLSEXTCVM = 86
    CTLSIFCHG = 87
    MFNFOUND = 100
    MFERRFMT = 101
    MFERR = 102

    @property
    def name(self) -> str:  # type: ignore[override]
        return "ST_" + self._name_

    @property
    def code(self) -> int:
        return int(self)

    @property
    def ok(self) -> bool:
        return self is Status.OK


class Error(Exception):
    """What the library raised: its code, and its text, which reads "[KOR_RESULT_NAME] detail". `sent` tells that the
    PIN pad had taken the request by then."""

    sent = False

    def __init__(self, code: int, text: str) -> None:
        super().__init__(code, text)
        self.code = Code(code)
        self.text = text

    def __str__(self) -> str:
        return self.text


class Why(enum.Enum):
    """Why a caller ended a wait."""

    DEADLINE = "the deadline has passed"
    CANCELLED = "the wait was cancelled"


class Ended(Error):
    """A wait that its caller has ended. CAN has been sent and confirmed, so the link is free."""

    def __init__(self, why: Why) -> None:
        super().__init__(Code.OK, why.value)
        self.args = (why,)
        self.why = why
        self.sent = True


class Refused(Error):
    """A status that is no success, where an answer's value was asked for."""

    def __init__(self, command: str, status: Status) -> None:
        super().__init__(Code.OK, f"{command} was answered with {status.name}")
        self.args = (command, status)
        self.command = command
        self.status = status


class Incomplete(Error):
    """A load of tables or of a media file that ended half-way, so that the PIN pad has neither the old nor the new for
    sure. `done` of `total` records or bytes were taken; __cause__ is what went wrong."""

    def __init__(self, what: str, done: int, total: int) -> None:
        super().__init__(Code.OK, f"the load of {what} ended after {done} of {total}")
        self.args = (what, done, total)
        self.done = done
        self.total = total


def illegal(detail: str) -> Error:
    """An argument that the package refuses before the library sees it, in the library's words."""
    return Error(Code.ILLEGAL_ARGUMENT, f"[KOR_RESULT_ILLEGAL_ARGUMENT] {detail}")


def state(detail: str) -> Error:
    """What the package refuses at this time."""
    return Error(Code.ILLEGAL_STATE, f"[KOR_RESULT_ILLEGAL_STATE] {detail}")


def malformed(detail: str) -> Error:
    """An answer that the library took and the package cannot read."""
    return Error(Code.PROTOCOL_ERROR, f"[KOR_RESULT_PROTOCOL_ERROR] {detail}")
