# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The link to a PIN pad, sessions on it, and waiting."""
import asyncio
import contextlib
import ctypes
import os
import select
import time
from collections.abc import Callable, Generator
from types import TracebackType
from typing import Any, Generic, TypeVar

from . import _native
from ._records import decoded, display
from ._request import Answer, Poll, Request, Seconds, answer, milliseconds, seconds
from .errors import Ended, Error, Refused, Status, Why
from .observer import Observer, Watch

T = TypeVar("T")

# An answer that has begun to come is read for so long at a time, so that a slow line keeps the library busy for no
# longer. What was cut short is gone on with.
_SLICE_MS = 20
_SLICE = _SLICE_MS / 1000
# A CLO takes so many characters, in one line.
_SHORT = 32


class _Waker:
    """Ends a wait at the descriptor. It is closed when nobody can reach it any more, so that a late wake() never
    writes to a descriptor that means something else by then."""

    def __init__(self) -> None:
        self.descriptor = os.eventfd(0, os.EFD_NONBLOCK | os.EFD_CLOEXEC)

    def wake(self) -> None:
        os.eventfd_write(self.descriptor, 1)

    def rest(self) -> None:
        try:
            os.eventfd_read(self.descriptor)
        except BlockingIOError:
            pass

    def __del__(self) -> None:
        if hasattr(self, "descriptor"):
            os.close(self.descriptor)


class Link:
    """An open port with a PIN pad at it. With `claim` no other program may open it meanwhile."""

    def __init__(self, port: str | os.PathLike[str], claim: bool = False, whole_frames: bool = False) -> None:
        self._waker = _Waker()
        self._watch: Watch | None = None
        self._limit_ms = 0
        self._handle = ctypes.c_void_p()
        self._handle = ctypes.c_void_p(_native.call("abecs_comm_claim" if claim else "abecs_comm_open",
                                                    os.fsencode(port)))
        # This package waits by itself, where other threads are free to use the library.
        self._call("abecs_comm_set_poll_time", 0)
        self.poll_time: Seconds = 2.0
        self.whole_frames = whole_frames

    def _raw(self, name: str, *arguments: Any) -> Any:
        return _native.call(name, self._handle, *arguments)

    def _call(self, name: str, *arguments: Any) -> Any:
        """The observer is told after the call, outside of the lock."""
        try:
            return self._raw(name, *arguments)
        finally:
            self._deliver()

    def _deliver(self) -> None:
        if self._watch is not None:
            self._watch.deliver()

    def open(self, secure: bool = False) -> "Session":
        """Opens a session, an encrypted one with `secure`. A PIN pad on which an encrypted session was cut off does not
        take plain commands, be it OPN or the first one after it, until an encrypted session was opened and closed: that
        is done then, and the command sent again."""
        status = self._call("abecs_cmd_opn", secure)
        if status == Status.ERRPKTSEC and not secure:
            status = self._end_what_was_cut_off()
        if status != Status.OK:
            raise Refused("OPN", Status(status))
        return Session(self, secure)

    def _end_what_was_cut_off(self) -> int:
        self.open(secure=True).close()
        return self._call("abecs_cmd_opn", False)

    @property
    def limit(self) -> float | None:
        """The longest that a call may use the line, in seconds; None for no limit."""
        return self._call("abecs_comm_get_limit") / 1000 or None

    @limit.setter
    def limit(self, limit: Seconds | None) -> None:
        with _native.lock:
            self._raw("abecs_comm_set_limit", milliseconds(limit))
            self._limit_ms = milliseconds(limit)

    @property
    def send_interval(self) -> float:
        """The least time from one acknowledgement to the next request, in seconds."""
        return self._call("abecs_comm_get_send_interval") / 1000

    @send_interval.setter
    def send_interval(self, interval: Seconds) -> None:
        self._call("abecs_comm_set_send_interval", milliseconds(interval))

    @property
    def whole_frames(self) -> bool:
        """Whether a frame goes out in one write."""
        return self._call("abecs_comm_get_whole_frames")

    @whole_frames.setter
    def whole_frames(self, whole: bool) -> None:
        self._call("abecs_comm_set_whole_frames", whole)

    @property
    def descriptor(self) -> int:
        """For an event loop: readable when it is time to poll(). Nobody else may read, write or close it."""
        return self._call("abecs_comm_get_fd")

    @property
    def has_input(self) -> bool:
        """Whether it is time to poll() already, though the descriptor may not become readable."""
        return self._raw("abecs_comm_has_input")

    @property
    def waiting_for(self) -> str:
        """The command whose answer the link waits for, or ""."""
        return decoded(self._call("abecs_comm_get_blk_wait_id"))

    def observe(self, tell: Observer | None, packets: bool = False) -> None:
        """Has `tell` called with a LinkEvent for each thing that happens, after the call in which it did, in that
        call's thread; None ends it. With `packets` it sees those in clear, card data included."""
        watch = None if tell is None else Watch(tell)
        with _native.lock:
            self._raw("abecs_comm_show_clear_packets", packets and watch is not None)
            self._raw("abecs_comm_set_observer", watch and watch.callback, None)
            self._watch = watch  # keeps the callback alive

    def wake(self) -> None:
        """Ends the waiting of a poll(), from another thread or from a signal handler."""
        self._waker.wake()

    def send_can(self) -> None:
        """Ends what the PIN pad is doing. When this returns it has confirmed, and the link is free."""
        self._call("abecs_comm_send_can")

    def close(self) -> None:
        if self._handle:
            try:
                _native.call("abecs_comm_close", ctypes.byref(self._handle))
            finally:
                self._deliver()

    def __enter__(self) -> "Link":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        try:
            self.close()
        except Error:
            if error is None:
                raise

    def _look(self, poll: Poll[T], notice: Any) -> tuple[int, Callable[[], T]]:
        """Looks for an answer without waiting for one to begin."""
        try:
            with _native.lock:
                self._raw("abecs_comm_set_limit", _SLICE_MS)
                try:
                    found = poll(notice)
                    if found[0] == Status.PROCESSING and self._watch is not None and self.has_input:
                        self._watch.drop_last_time_out()  # of the slice, which nobody has asked for
                finally:
                    self._raw("abecs_comm_set_limit", self._limit_ms)
            return found
        finally:
            self._deliver()

    def _pause(self, until: float | None) -> None:
        """Waits for something to look at, outside of the lock."""
        left = None if until is None else max(until - time.monotonic(), 0)
        if self.has_input:
            left = min(_SLICE, _SLICE if left is None else left)
        poll = select.poll()
        poll.register(self.descriptor, select.POLLIN)
        poll.register(self._waker.descriptor, select.POLLIN)
        poll.poll(None if left is None else left * 1000)
        self._waker.rest()

    async def _readable(self) -> None:
        loop = asyncio.get_running_loop()
        awaited: asyncio.Future[None] = loop.create_future()
        descriptors = (self.descriptor, self._waker.descriptor)
        for descriptor in descriptors:
            loop.add_reader(descriptor, lambda: awaited.done() or awaited.set_result(None))
        try:
            await asyncio.wait([awaited], timeout=_SLICE if self.has_input else None)
        finally:
            for descriptor in descriptors:
                loop.remove_reader(descriptor)
            self._waker.rest()


class Session:
    """A session with the PIN pad, which Link.open() opens. The end of a `with` closes it: it sends CAN where the PIN
    pad may still be at work, then CLO or CLX. An error in that gives way to the one that ended the block."""

    def __init__(self, link: Link, encrypted: bool) -> None:
        self.link = link
        self.encrypted = encrypted
        self.closed = False
        self._last = ("", "")
        self._fresh = not encrypted

    def run(self, request: Request[T], deadline: Seconds | None = None) -> Answer[T]:
        """Sends a request and brings its answer. For one that waits see Wait.get()."""
        if request.waits:
            with self.start(request) as wait:
                return wait.get(deadline)
        try:
            outcome = request._run(self.link._raw)
            if self._begins_again(outcome[0]):
                outcome = request._run(self.link._raw)
            return answer(request, outcome)
        finally:
            self.link._deliver()

    def start(self, request: Request[T]) -> "Wait[T]":
        """Sends a request that waits for somebody."""
        if not request.waits:
            raise TypeError(f"{request.id} is answered at once: use run()")
        try:
            return Wait(self, request, request._start(self.link._raw))
        finally:
            self.link._deliver()

    def _begins_again(self, status: int) -> bool:
        """Whether the first command met an encrypted session that was cut off. It is ended then."""
        refused = self._fresh and status == Status.ERRPKTSEC
        self._fresh = False
        if refused:
            opened = self.link._end_what_was_cut_off()
            if opened != Status.OK:
                raise Refused("OPN", Status(opened))
        return refused

    def leave(self, text: str = "", image: str = "") -> None:
        """What stays on the display when the end of a `with` closes the session."""
        self._last = (text, image)

    def close(self, text: str = "", image: str = "") -> Answer[None]:
        """Closes it and leaves a text or a media file on the display: by CLO, or by CLX if the text is longer than 32
        characters or has several lines, or there is an image."""
        shown = display(text)
        short = len(shown) <= _SHORT and b"\r" not in shown and not image
        close = ("abecs_cmd_clo", shown) if short else ("abecs_cmd_clx", shown, display(image))
        status = self.link._call(*close)
        if self._begins_again(status):
            status = self.link._call(*close)
        self.closed = True
        return Answer("CLO" if short else "CLX", Status(status), status == Status.OK)

    def __enter__(self) -> "Session":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        if self.closed:
            return
        try:
            if error is not None or self.link.waiting_for:
                self.link.send_can()
            self.close(*self._last)
        except Error:
            if error is None:
                raise


class Wait(Generic[T]):
    """A request that waits for somebody. Use it with `with`, whose end sends CAN unless the answer has come, or with
    `await`."""

    def __init__(self, session: Session, request: Request[T], poll: Poll[T]) -> None:
        self._session = session
        self._link = session.link
        self._request = request
        self._poll = poll
        self._notice = ctypes.create_string_buffer(33)
        self._tell: Callable[[str], object] | None = None
        self._cancelled = False
        self._answer: Answer[T] | None = None
        self._why: Why | None = None

    def on_notice(self, tell: Callable[[str], object]) -> "Wait[T]":
        """Has `tell` called with each text that the PIN pad sends meanwhile. What it raises comes out of get()."""
        self._tell = tell
        return self

    def get(self, deadline: Seconds | None = None) -> Answer[T]:
        """Waits for the answer. When `deadline` seconds have passed, or somebody has called cancel(), the PIN pad is
        cancelled and Ended is raised."""
        end = None if deadline is None else time.monotonic() + seconds(deadline)
        while (found := self._look()) is None:
            if self._cancelled:
                self._end(Why.CANCELLED)
            if end is not None and time.monotonic() >= end:
                self._end(Why.DEADLINE)
            self._link._pause(end)
        return found

    def poll(self) -> Answer[T] | None:
        """The answer, or None when none has come within the link's poll time."""
        found = self._look()
        if found is None and seconds(self._link.poll_time) > 0:
            self._link._pause(time.monotonic() + seconds(self._link.poll_time))
            found = self._look()
        return found

    def cancel(self) -> None:
        """Ends get() or `await` as soon as it can be, from another thread or from a signal handler."""
        self._cancelled = True
        self._link.wake()

    def close(self) -> None:
        """Sends CAN unless the wait is over."""
        if self._answer is None and self._why is None:
            self._link.send_can()
            self._why = Why.CANCELLED

    def __await__(self) -> Generator[Any, None, Answer[T]]:
        """As get(). Cancelling the task cancels the PIN pad, too; for a deadline use asyncio.timeout()."""
        return self._wait().__await__()

    async def _wait(self) -> Answer[T]:
        try:
            while (found := self._look()) is None:
                if self._cancelled:
                    await asyncio.to_thread(self._end, Why.CANCELLED)
                await self._link._readable()
            return found
        except asyncio.CancelledError:
            # In a thread, for the loop's other tasks, and not to be cut short by a second cancellation.
            with contextlib.suppress(Error):
                await asyncio.shield(asyncio.get_running_loop().run_in_executor(None, self.close))
            raise

    def __enter__(self) -> "Wait[T]":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        try:
            self.close()
        except Error:
            if error is None:
                raise

    def _end(self, why: Why) -> None:
        self._link.send_can()
        self._why = why
        raise Ended(why)

    def _look(self) -> Answer[T] | None:
        """The answer, if it is there. Notices that stand before it are told of."""
        while self._answer is None:
            if self._why is not None:
                raise Ended(self._why)
            outcome = self._link._look(self._poll, self._notice)
            if outcome[0] == Status.PROCESSING:
                return None
            if outcome[0] == Status.NOTIFICATION:
                if self._tell is not None:
                    self._tell(decoded(self._notice.value))
            elif self._session._begins_again(outcome[0]):
                self._poll = self._request._start(self._link._raw)
            else:
                self._answer = answer(self._request, outcome)
        return self._answer
