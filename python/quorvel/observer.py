# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Being told of what a link does, for a log."""
import ctypes
import enum
import logging
from collections import deque
from collections.abc import Callable, Generator
from dataclasses import dataclass, field
from typing import Any, TypeVar

from ._records import RECORDS, decoded


E = TypeVar("E")


class EventType(enum.IntEnum):
    SENT = 0
    RECEIVED = 1
    REJECTED = 2
    DAMAGED = 3
    CANCELLED = 4
    TIMEOUT = 5


@dataclass(frozen=True)
class LinkEvent:
    """What happened on a link. `packet` is there only where packets were asked for; it is not printed."""

    type: EventType
    command: str
    status: int
    encrypted: bool
    packet_size: int
    frame_size: int
    duration: float
    packet: bytes | None = field(default=None, repr=False)


Observer = Callable[[LinkEvent], object]

# The second argument of the C type, its context, is not needed, and not declaring it lets a method of one argument be
# called. The library only reads its own copy of the record until the call is over.
_TELL = ctypes.CFUNCTYPE(None, ctypes.POINTER(RECORDS["AbecsLinkEvent"]))


class Watch:
    """Collects the events of a call, in the middle of which nothing else can be done, and tells of them after it."""

    def __init__(self) -> None:
        self.tell: Observer | None = None
        # How many there were, by which a link sees whether a request has gone out.
        self.seen = 0
        self._events: deque[LinkEvent] = deque()
        self._interrupts: deque[BaseException] = deque()
        collector = self._collect()
        next(collector)
        self.callback = _TELL(collector.send)

    def _collect(self) -> Generator[None, Any, None]:
        """A generator, because it is resumed within its try block: the interpreter runs a pending KeyboardInterrupt at
        the start of a function, before any try block of it, and ctypes would drop it."""
        while True:
            try:
                while True:
                    event = yield
                    self.seen += 1
                    if self.tell is not None:
                        self._events.append(_event(event.contents))
            except GeneratorExit:
                return
            except BaseException as error:
                self._interrupts.append(error)

    def drop_last_time_out(self) -> None:
        if self._events and self._events[-1].type is EventType.TIMEOUT:
            self._events.pop()

    def deliver(self) -> None:
        """An observer that fails is logged, and disturbs neither the call nor its error."""
        while (event := _first(self._events)) is not None:
            try:
                if self.tell is not None:
                    self.tell(event)
            except Exception:
                logging.getLogger("quorvel").exception("an observer of a link has failed")
        if (interrupt := _first(self._interrupts)) is not None:
            raise interrupt


def _first(queue: "deque[E]") -> E | None:
    """Several threads may take from it."""
    try:
        return queue.popleft()
    except IndexError:
        return None


def _event(raw: Any) -> LinkEvent:
    packet = ctypes.string_at(raw.packet, raw.packetSize) if raw.packet else None
    return LinkEvent(EventType(raw.type), decoded(raw.cmdId), raw.status, raw.encrypted, raw.packetSize, raw.frameSize,
                     raw.duration / 1e6, packet)
