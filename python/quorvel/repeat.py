# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Whether a command may be sent again after it has failed. docs/cpp.md has the same as a table."""
import dataclasses
import enum

from .errors import Code, Error, Refused


class Failure(enum.Enum):
    """What became of a command."""

    NOT_SENT = "not sent"  # refused on this side
    REFUSED = "refused"  # answered with a status other than OK
    LOST = "lost"  # it went out, and no answer came that can be read; or the wait was ended


def failure_of(error: Error) -> Failure:
    """Which failure an error stands for; any doubt counts as lost."""
    if isinstance(error, Refused):
        return Failure.REFUSED
    refused_here = (Code.ILLEGAL_ARGUMENT, Code.ILLEGAL_STATE, Code.INDEX_OUT_OF_BOUNDS, Code.FILE_NOT_FOUND,
                    Code.DEVICE_BUSY, Code.PERMISSION_DENIED)
    return Failure.NOT_SENT if not error.sent and error.code in refused_here else Failure.LOST


class Advice(enum.Enum):
    AGAIN = "again"
    FROM_START = "from"  # not by itself: begin with `first`
    NEVER = "never"


@dataclasses.dataclass(frozen=True)
class Repeat:
    advice: Advice
    first: str = ""
    why: str = ""


_CARD = "the card's transaction is begun anew with the card"
_LOAD = "a load is made from its start"
_OVER = "the session is over on this side"
_FROM_START = {"GOX": ("GCX", _CARD), "GOC": ("GCR", _CARD), "TLR": ("TLI", _LOAD), "TLE": ("TLI", _LOAD),
               "MLR": ("MLI", _LOAD), "MLE": ("MLI", _LOAD), "CLO": ("OPN", _OVER), "CLX": ("OPN", _OVER)}
_WHEN_LOST = {"CHP": Repeat(Advice.NEVER, why="a chip may have carried out the command"),
              "GEN": Repeat(Advice.NEVER, why="a chip may have carried out the command, a security module counted it")}
_ASKS_THE_CARDHOLDER = set("GCX GCR GPN GCD GKY MNU CKE CEX RMC".split())
_HARMLESS = set("OPN GIN GIX GTS GDU GED GTK DSP DEX DSI TLI MLI LMF DMF CNG DWK ENB EBX CHP GEN".split())


def repeat_safety(command: str, failure: Failure) -> Repeat:
    """Whether a command, by its id, may be sent again. LOST is the hard case: it may have been carried out."""
    if failure is Failure.NOT_SENT:
        return Repeat(Advice.AGAIN, why="nothing was sent")
    if command in ("FCX", "FNC"):
        lost = failure is Failure.LOST
        return Repeat(Advice.NEVER, why="the card may have decided: the outcome is unknown, reverse" if lost else
                      "the card has not approved: it counts as declined, reverse")
    if command in _FROM_START:
        first, why = _FROM_START[command]
        return Repeat(Advice.FROM_START, first, why)
    if failure is Failure.LOST and command in _WHEN_LOST:
        return _WHEN_LOST[command]
    if command in _ASKS_THE_CARDHOLDER:
        return Repeat(Advice.AGAIN, why="the cardholder is asked once more")
    if command in _HARMLESS:
        return Repeat(Advice.AGAIN, why="a second time changes nothing")
    return Repeat(Advice.NEVER, why="it is no command that is known here")
