# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The link to a PIN pad, sessions on it, and waiting."""
import asyncio
import contextlib
import ctypes
import os
import select
import threading
import time
import weakref
from collections.abc import Callable, Generator
from types import TracebackType
from typing import Any, Generic, Self, TypeVar

from . import _native
from ._records import decoded, display, wiped
from ._request import Answer, Outcome, Poll, Request, Seconds, answer, milliseconds, seconds
from .errors import Code, Ended, Error, Refused, Status, Why, state
from .immediate import WorkingKey
from .observer import Observer, Watch

T = TypeVar("T")
R = TypeVar("R")

# An answer that has begun to come is read for so long at a time, so that a slow line keeps the library busy for no
# longer. What was cut short is gone on with.
_SLICE_MS = 20
_SLICE = _SLICE_MS / 1000
# Nobody sleeps for longer without a look round: another waiter may have taken the wake-up.
_NAP = 1.0
# So long a close waits for those who wait: for one that has gone without a word, a loop that was stopped for instance.
_PATIENCE = 5.0
# What leaves it open what the PIN pad is at.
_OF_THE_EXCHANGE = (Code.IO_ERROR, Code.TIMEOUT_ERROR, Code.PROTOCOL_ERROR, Code.CRYPT_ERROR, Code.MALLOC_ERROR)
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


class _Closing:
    """Closed by the end of a `with`. An error in that gives way to the one that ended the block."""

    def close(self) -> object:
        raise NotImplementedError

    def _at_end(self) -> None:
        self.close()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        try:
            self._at_end()
        except Error:
            if error is None:
                raise


class Link(_Closing):
    """An open port with a PIN pad at it. With `claim` no other program may open it meanwhile."""

    def __init__(self, port: str | os.PathLike[str], claim: bool = False, whole_frames: bool = False) -> None:
        self._opened: list[int] = []
        self._process = os.getpid()
        self._waker = _Waker()
        self._watch = Watch()
        self._limit_ms = 0
        self._sliced = False
        # Whether nobody knows what the PIN pad is at. Then the next request begins with CAN.
        self._unsettled = False
        # Which wait is on: changes whenever one begins, and when CAN ends it.
        self._turn = 0
        self._session: Callable[[], Session | None] = lambda: None
        # Who waits at the descriptor: how many threads, and in event loops what ends it. Nobody may when it is closed.
        self._left = threading.Condition()
        self._inside = 0
        self._looping: dict[asyncio.AbstractEventLoop, Callable[[], None]] = {}
        self._closing = False
        self._pending = False
        try:
            _native.keep(self._opened, "abecs_comm_claim" if claim else "abecs_comm_open", os.fsencode(port))
            # This package waits by itself, where other threads are free to use the library.
            self._call("abecs_comm_set_poll_time", 0)
            self._call("abecs_comm_set_observer", self._watch.callback, None)
            self._descriptor: int = self._call("abecs_comm_get_fd")
            self.poll_time: Seconds = 2.0
            self.whole_frames = whole_frames
        except BaseException:
            with contextlib.suppress(Error):
                self.close()
            raise

    def __del__(self) -> None:
        # A child that fork has made leaves its parent's port alone.
        if getattr(self, "_process", None) == os.getpid():
            with contextlib.suppress(Exception):
                self.close()

    def _raw(self, name: str, *arguments: Any) -> Any:
        if not self._opened:
            raise state("the link is closed")
        return _native.call(name, ctypes.c_void_p(self._opened[0]), *arguments)

    def _call(self, name: str, *arguments: Any) -> Any:
        """The observer is told after the call, outside of the lock."""
        try:
            return self._raw(name, *arguments)
        finally:
            self._watch.deliver()

    def _exchange(self, act: Callable[[], R]) -> R:
        """What speaks to the PIN pad. After an error in the middle of that nobody knows what the PIN pad is at, and
        what it answers late would be taken for the answer to the next request: that begins with CAN."""
        try:
            with _native.lock:
                if self._unsettled:
                    self._cancel()
                self._restore_limit()
                before = self._watch.seen
                try:
                    return act()
                except BaseException as error:
                    self._note(error, self._watch.seen != before)
                    raise
        finally:
            self._watch.deliver()

    def _note(self, error: BaseException, sent: bool) -> None:
        if isinstance(error, Error):
            error.sent |= sent
            self._unsettled |= error.code in _OF_THE_EXCHANGE
        else:
            self._unsettled |= sent  # an interrupt has cut it off

    def _cancel(self) -> None:
        with _native.lock:
            self._turn += 1
            self._unsettled = True
            self._waker.wake()
            self._raw("abecs_comm_send_can")
            self._unsettled = False

    def _settle(self) -> None:
        """What the PIN pad is at, if anything, is ended."""
        if self._unsettled or self.waiting_for:
            self.send_can()

    def _end_turn(self, turn: int) -> None:
        """Sends CAN if that wait is still on."""
        with _native.lock:
            if self._turn == turn and self._opened and self.waiting_for:
                self.send_can()

    def open(self, secure: bool = False) -> "Session":
        """Opens a session, an encrypted one with `secure`; there is one at a time. A PIN pad on which an encrypted
        session was cut off does not take plain commands, be it OPN or the first one after it, until an encrypted
        session was opened and closed: that is done then, and the command sent again."""
        with _native.lock:
            if self._session() is not None:
                raise state("a session is open on this link")
            self._settle()
            if not secure:  # the key of a session that could not be closed would encipher what is to be plain
                self._raw("abecs_comm_set_key", None)
            status = self._do("abecs_cmd_opn", secure)
            if status == Status.ERRPKTSEC and not secure:
                status = self._end_what_was_cut_off()
            if status != Status.OK:
                raise Refused("OPN", Status(status))
            return Session(self, secure)

    def _do(self, name: str, *arguments: Any) -> Any:
        return self._exchange(lambda: self._raw(name, *arguments))

    def _end_what_was_cut_off(self) -> int:
        status = self._do("abecs_cmd_opn", True)
        if status != Status.OK:
            raise Refused("OPN", Status(status))
        self._do("abecs_cmd_clo", b"")
        return self._do("abecs_cmd_opn", False)

    @property
    def limit(self) -> float | None:
        """The longest that a call may use the line, in seconds; None for no limit."""
        with _native.lock:
            self._restore_limit()
            return self._raw("abecs_comm_get_limit") / 1000 or None

    @limit.setter
    def limit(self, limit: Seconds | None) -> None:
        with _native.lock:
            self._raw("abecs_comm_set_limit", milliseconds(limit))
            self._limit_ms = milliseconds(limit)

    def _restore_limit(self) -> None:
        if self._sliced:
            self._raw("abecs_comm_set_limit", self._limit_ms)
            self._sliced = False

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
        return decoded(self._raw("abecs_comm_get_blk_wait_id"))

    def observe(self, tell: Observer | None, packets: bool = False) -> None:
        """Has `tell` called with a LinkEvent for each thing that happens, after the call in which it did, in that
        call's thread; None ends it. With `packets` it sees those in clear, card data included."""
        with _native.lock:
            self._raw("abecs_comm_show_clear_packets", packets and tell is not None)
            self._watch.tell = tell

    def set_pan_key(self, key: WorkingKey | None) -> None:
        """Has the link decipher card data with a working key, or no longer. In an encrypted session the latter breaks
        the session, so remove the key outside of one."""
        if key is None:
            self._call("abecs_comm_set_wk_pan", None)
            return
        with wiped(key._record()) as native:
            self._call("abecs_comm_set_wk_pan", ctypes.byref(native))

    def wake(self) -> None:
        """Ends the waiting of a poll(), from another thread or from a signal handler."""
        self._waker.wake()

    def send_can(self) -> None:
        """Ends what the PIN pad is doing. When this returns it has confirmed, and the link is free."""
        try:
            self._cancel()
        finally:
            self._watch.deliver()

    def close(self) -> None:
        """Closes the port. Who waits at it meanwhile gets an Error."""
        with self._left:
            self._closing = True
            self._waker.wake()
            for loop, leave in list(self._looping.items()):
                if loop.is_running() and asyncio._get_running_loop() is not loop:
                    loop.call_soon_threadsafe(leave)
                else:
                    leave()
            self._left.wait_for(lambda: not self._inside and not self._looping, _PATIENCE)
        self._session = lambda: None
        try:
            with _native.lock:
                if self._opened and (handle := self._opened.pop()):
                    _native.call("abecs_comm_close", ctypes.byref(ctypes.c_void_p(handle)))
        finally:
            self._watch.deliver()

    def _look(self, poll: Poll[T], notice: Any) -> Outcome[T]:
        """Looks for an answer without waiting for one to begin."""
        with _native.lock:
            try:
                self._sliced = True
                self._raw("abecs_comm_set_limit", _SLICE_MS)
                found = poll(notice)
                self._pending = self.has_input
                if found[0] == Status.PROCESSING and self._pending:
                    self._watch.drop_last_time_out()  # of the slice, which nobody has asked for
                return found
            finally:
                if self._opened:
                    self._restore_limit()

    def _nap(self, until: float | None) -> float:
        """How long to wait at the descriptor, in seconds."""
        left = _SLICE if self._pending else _NAP
        return left if until is None else max(min(until - time.monotonic(), left), 0)

    def _pause(self, until: float | None) -> bool:
        """Waits for something to look at, outside of the lock. Whether there is something."""
        with self._left:
            if self._closing:
                raise state("the link is closed")
            self._inside += 1
        try:
            poll = select.poll()
            poll.register(self._descriptor, select.POLLIN)
            poll.register(self._waker.descriptor, select.POLLIN)
            ready = poll.poll(self._nap(until) * 1000)
            if not self._closing:
                self._waker.rest()
            return bool(ready)
        finally:
            with self._left:
                self._inside -= 1
                self._left.notify_all()

    async def _readable(self) -> None:
        loop = asyncio.get_running_loop()
        awaited: asyncio.Future[None] = loop.create_future()
        descriptors = (self._descriptor, self._waker.descriptor)

        def leave() -> None:
            with self._left:
                if self._looping.get(loop) is leave:
                    del self._looping[loop]
                    if loop.is_closed():
                        return
                    for descriptor in descriptors:
                        loop.remove_reader(descriptor)
                    self._left.notify_all()
            awaited.done() or awaited.set_result(None)

        with self._left:
            if self._closing:
                raise state("the link is closed")
            for descriptor in descriptors:
                loop.add_reader(descriptor, lambda: awaited.done() or awaited.set_result(None))
            self._looping[loop] = leave
        try:
            await asyncio.wait([awaited], timeout=self._nap(None))
        finally:
            leave()
            if not self._closing:
                self._waker.rest()


class Session(_Closing):
    """A session with the PIN pad, which Link.open() opens. The end of a `with` closes it: it sends CAN where the PIN
    pad may still be at work, then CLO or CLX. An error in that gives way to the one that ended the block."""

    def __init__(self, link: Link, encrypted: bool) -> None:
        self.link = link
        self.encrypted = encrypted
        self.closed = False
        self._last = ("", "")
        self._fresh = not encrypted
        link._session = weakref.ref(self)

    def _require_open(self) -> None:
        if self.closed or self.link._session() is not self:
            raise state("the session is closed")

    def run(self, request: Request[T], deadline: Seconds | None = None) -> Answer[T]:
        """Sends a request and brings its answer. For one that waits see Wait.get(), to which `deadline` goes."""
        if request.waits:
            with self.start(request) as wait:
                return wait.get(deadline)
        if deadline is not None:
            raise TypeError(f"{request.id} is answered at once and takes no deadline: set the link's limit")
        self._require_open()

        def ask() -> Answer[T]:
            outcome = request._run(self.link._raw)
            if self._begins_again(outcome[0]):
                outcome = request._run(self.link._raw)
            return answer(request, outcome)
        return self.link._exchange(ask)

    def start(self, request: Request[T]) -> "Wait[T]":
        """Sends a request that waits for somebody."""
        if not request.waits:
            raise TypeError(f"{request.id} is answered at once: use run()")
        self._require_open()

        def send() -> Wait[T]:
            before = self.link.waiting_for
            try:
                poll = request._start(self.link._raw)
                self.link._turn += 1
                self.link._waker.rest()
                return Wait(self, request, poll)
            except BaseException:
                if not before and self.link.waiting_for:
                    with contextlib.suppress(Error):
                        self.link._cancel()
                raise
        return self.link._exchange(send)

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
        """Ends what waits, closes the session and leaves a text or a media file on the display: by CLO, or by CLX if
        the text is longer than 32 characters or has several lines, or there is an image. Whatever goes wrong, the
        session is over on this side."""
        self._require_open()
        shown = display(text)
        short = len(shown) <= _SHORT and b"\r" not in shown and not image
        close = ("abecs_cmd_clo", shown) if short else ("abecs_cmd_clx", shown, display(image))
        self.closed = True
        self.link._session = lambda: None
        self.link._settle()
        status = self.link._do(*close)
        if self._begins_again(status):
            status = self.link._do(*close)
        return Answer("CLO" if short else "CLX", Status(status), status == Status.OK)

    def _at_end(self) -> None:
        if not self.closed and self.link._session() is self:
            self.close(*self._last)


class Wait(_Closing, Generic[T]):
    """A request that waits for somebody. Use it with `with`, whose end sends CAN unless the answer has come, or with
    `await`. One that is dropped before that sends CAN, too."""

    def __init__(self, session: Session, request: Request[T], poll: Poll[T]) -> None:
        self._session = session
        self._link = session.link
        self._turn = session.link._turn
        self._request = request
        self._poll = poll
        self._notice = ctypes.create_string_buffer(33)
        self._tell: Callable[[str], object] | None = None
        self._cancelled = False
        self._answer: Answer[T] | None = None
        # Over without an answer: then every further get() raises the same.
        self._over = False
        self._failure: Error | None = None

    def on_notice(self, tell: Callable[[str], object]) -> "Wait[T]":
        """Has `tell` called with each text that the PIN pad sends meanwhile. What it raises comes out of get()."""
        self._tell = tell
        return self

    def get(self, deadline: Seconds | None = None) -> Answer[T]:
        """Waits for the answer. When `deadline` seconds have passed, or somebody has called cancel(), the PIN pad is
        cancelled and Ended is raised. Once it is over, by an error too, the same comes out again."""
        end = None if deadline is None else time.monotonic() + seconds(deadline)
        while True:
            more = self._step()
            if self._answer is not None:
                return self._answer
            if end is not None and time.monotonic() >= end:
                self._end(Why.DEADLINE)
            if not more:
                self._pause(end)

    def poll(self) -> Answer[T] | None:
        """The answer, or None when none has come within the link's poll time. Ended once cancel() was called."""
        end = time.monotonic() + seconds(self._link.poll_time)
        woken = False
        while True:
            more = self._step()
            if self._answer is not None:
                return self._answer
            if (woken and not more) or time.monotonic() >= end:
                return None
            woken = not more and self._pause(end)

    def cancel(self) -> None:
        """Ends get(), poll() or `await` as soon as it can be, from another thread or from a signal handler."""
        self._cancelled = True
        self._link.wake()

    def close(self) -> None:
        """Sends CAN unless the wait is over."""
        with _native.lock:
            if self._is_on():
                self._over = True
                self._link._end_turn(self._turn)

    def __await__(self) -> Generator[Any, None, Answer[T]]:
        """As get(). Cancelling the task cancels the PIN pad, too; for a deadline use asyncio.timeout()."""
        return self._wait().__await__()

    async def _wait(self) -> Answer[T]:
        try:
            while self._answer is None:
                while not _native.lock.acquire(blocking=False):
                    await asyncio.sleep(_SLICE)  # for the loop's other tasks
                try:
                    outcome = self._ask()
                finally:
                    _native.lock.release()
                    self._link._watch.deliver()
                more = self._take(outcome)
                if self._answer is None and self._cancelled:
                    await asyncio.to_thread(self._end, Why.CANCELLED)
                if not more and self._answer is None:
                    await self._link._readable()
            return self._answer
        except (Exception, asyncio.CancelledError) as error:
            if isinstance(error, Error):
                self._fail(error)
            # In a thread, for the loop's other tasks, and not to be cut short by a second cancellation.
            if self._is_on():
                with contextlib.suppress(Error):
                    await asyncio.shield(asyncio.get_running_loop().run_in_executor(None, self.close))
            raise

    def __del__(self) -> None:
        # A task that was cancelled before its first step, for instance, has only dropped it. What goes wrong stays
        # untold: the next request begins with CAN.
        with contextlib.suppress(Exception):
            if self._is_on() and self._link._opened and self._link._process == os.getpid():
                self._link._unsettled = True
                if asyncio._get_running_loop() is None:
                    self._link._end_turn(self._turn)
                else:
                    threading.Thread(target=_end_quietly, args=(self._link, self._turn)).start()

    def _is_on(self) -> bool:
        return self._answer is None and not self._over and self._turn == self._link._turn

    def _end(self, why: Why) -> None:
        try:
            with _native.lock:
                if self._is_on():
                    self._over = True
                    self._failure = Ended(why)
                    self._link.send_can()
        except Error as error:
            error.sent = True
            self._failure = error
            raise
        raise self._failure or Ended(why)

    def _step(self) -> bool:
        """Looks at the line once. Whether it is to be looked at again without a pause. Ended once cancel() was
        called, unless the answer has come."""
        try:
            more = self._take(self._ask())
        finally:
            self._link._watch.deliver()
        if self._answer is None and self._cancelled:
            self._end(Why.CANCELLED)
        return more

    def _pause(self, until: float | None) -> bool:
        try:
            return self._link._pause(until)
        except Error as error:
            self._fail(error)
            raise

    def _fail(self, error: Error) -> None:
        """Whatever goes wrong now, the request was sent."""
        self._link._note(error, True)
        self._over = self._over or not (self._link._opened and self._link.waiting_for)
        error.sent = True
        self._failure = error

    def _ask(self) -> Outcome[T] | None:
        if self._answer is not None:
            return None
        if not self._is_on():
            raise self._failure or Ended(Why.CANCELLED)
        try:
            return self._link._look(self._poll, self._notice)
        except Error as error:
            self._fail(error)
            raise

    def _take(self, outcome: Outcome[T] | None) -> bool:
        if outcome is None or outcome[0] == Status.PROCESSING:
            return False
        if outcome[0] == Status.NOTIFICATION:
            if self._tell is not None:
                self._tell(decoded(self._notice.value))
            return True
        try:
            if self._session._begins_again(outcome[0]):
                self._poll = self._link._exchange(lambda: self._request._start(self._link._raw))
                self._turn = self._link._turn
                return True
            self._answer = answer(self._request, outcome)
            return False
        except Error as error:
            self._fail(error)
            raise


def _end_quietly(link: Link, turn: int) -> None:
    with contextlib.suppress(Exception):
        link._end_turn(turn)
