# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""What all requests have in common, and the answer."""
import ctypes
import math
from collections.abc import Callable
from dataclasses import dataclass, field
from datetime import timedelta
from types import TracebackType
from typing import Any, ClassVar, Generic, TypeVar

from . import _native
from .errors import Refused, Status

T = TypeVar("T")
V = TypeVar("V")

# A time: seconds, whole or not.
Seconds = float | timedelta

# A function of the library on a link, which is its first argument.
Call = Callable[..., Any]
# The status of an answer, and what makes its value when it is a good one. Of a status below 0 there is no value.
Outcome = tuple[int, Callable[[], T]]
# Looks for the answer of a request that waits; a notice goes into the buffer.
Poll = Callable[[Any], Outcome[T]]


def seconds(time: Seconds) -> float:
    return time.total_seconds() if isinstance(time, timedelta) else float(time)


def whole_seconds(time: Seconds | None) -> int:
    """As the PIN pad is told: 0 for a time of its own. A part of a second counts as a whole one."""
    return 0 if time is None else math.ceil(seconds(time))


def milliseconds(time: Seconds | None) -> int:
    return 0 if time is None else math.ceil(seconds(time) * 1000)


class Request(Generic[T]):
    """A command with what it is asked. T is what its answer holds."""

    id: str
    waits: bool = False
    # The statuses that bring a value.
    good: ClassVar[frozenset[int]] = frozenset({Status.OK})

    def _run(self, call: Call) -> Outcome[T]:
        """One that is answered at once: sends it and reads the answer."""
        raise NotImplementedError

    def _start(self, call: Call) -> Poll[T]:
        """One that waits: sends it, and tells how its answer is looked for."""
        raise NotImplementedError


class Immediate(Request[T]):
    """Answered at once."""


class Waiting(Request[T]):
    """Answered when somebody has done something."""

    waits = True


@dataclass(frozen=True)
class Answer(Generic[T]):
    """The PIN pad's answer. What it holds is not printed."""

    command: str
    status: Status
    ok: bool
    _value: T | None = field(default=None, repr=False)

    @property
    def value(self) -> T:
        """What the answer holds; Refused when it is not ok."""
        if not self.ok:
            raise Refused(self.command, self.status)
        return self._value  # type: ignore[return-value]

    def require(self) -> T:
        """The value, under a name for where only success matters."""
        return self.value


def answer(request: Request[T], outcome: Outcome[T]) -> Answer[T]:
    status, value = outcome
    ok = status in request.good
    return Answer(request.id, Status(status), ok, value() if ok else None)


def nothing() -> None:
    """The value of an answer that has only a status."""


class Owned:
    """An object of the library's within a `with`, by the names of its functions."""

    def __init__(self, kind: str, *arguments: Any) -> None:
        self._kind = kind
        self.handle = ctypes.c_void_p(_native.call(f"{kind}_new", *arguments))

    def __enter__(self) -> "Owned":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        _native.call(f"{self._kind}_delete", ctypes.byref(self.handle))

    def __call__(self, name: str, *arguments: Any) -> Any:
        return _native.call(f"{self._kind}_{name}", self.handle, *arguments)

    def put(self, name: str, value: V | None, convert: Callable[[V], Any] = lambda value: value) -> None:
        """For an option, unless it was not given."""
        if value is not None:
            self(name, convert(value))
