# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Acquirer tables and media files, which take several commands."""
import ctypes
import os
from collections.abc import Callable, Iterator, Sequence
from pathlib import Path

from . import _native
from .errors import Error, Incomplete, Status
from .immediate import Dmf, Dsi, Gts, Lmf, Mle, Mli, Mlr, Tle, Tli, Tlr
from .link import Session
from .repeat import Failure, failure_of

# Told how much was taken, of how much.
Progress = Callable[[int, int], object]

_MOST_RECORDS = 99
_MOST_CHARACTERS = 997
_BLOCK = 995


class Tables:
    """Records of acquirer tables, a text each."""

    def __init__(self, records: Sequence[str]) -> None:
        self.records = tuple(records)

    def load(self, session: Session, acquirer: int, version: str, on_progress: Progress | None = None) -> None:
        """Replaces the tables of an acquirer by these. When it fails, Refused or Error if the PIN pad has not begun
        the load, and Incomplete once it may have."""
        batches = list(self._batches())
        begun, done = False, 0
        try:
            session.run(Tli(acquirer, version)).require()
            begun = True
            for batch in batches:
                session.run(Tlr(batch)).require()
                done += len(batch)
                if on_progress is not None:
                    on_progress(done, len(self.records))
            session.run(Tle()).require()
        except Error as error:
            if not begun and failure_of(error) is not Failure.LOST:
                raise
            raise Incomplete("tables", done, len(self.records)) from error

    @staticmethod
    def version(session: Session, acquirer: int) -> str | None:
        """The version of the tables that are loaded; None if the PIN pad has none."""
        answer = session.run(Gts(acquirer))
        return None if answer.status is Status.TABERR else answer.require()

    def _batches(self) -> Iterator[list[str]]:
        """As much as one request takes. A record that does not fit into one is left to the library to refuse; a key
        must not come twice in a batch."""
        batch: list[str] = []
        for one in self.records:
            full = len(batch) == _MOST_RECORDS or sum(map(len, batch)) + len(one) > _MOST_CHARACTERS
            if batch and full:
                yield batch
                batch = []
            batch.append(one)
        if batch:
            yield batch


class Media:
    """The media files of a PIN pad. Their names have up to 8 characters."""

    @staticmethod
    def put(session: Session, source: bytes | str | os.PathLike[str], name: str, type: int,
            on_progress: Progress | None = None) -> None:
        """Loads a file, from a path or from bytes. When it fails, Refused or Error if the PIN pad has not begun the
        load, and Incomplete once it may have."""
        data = bytes(source) if isinstance(source, (bytes, bytearray)) else Path(source).read_bytes()
        crc = ctypes.c_uint16(0)
        _native.call("abecs_crc16", data, len(data), ctypes.byref(crc))
        begun, done = False, 0
        try:
            session.run(Mli(name, len(data), crc.value, type)).require()
            begun = True
            while done < len(data):
                session.run(Mlr(data[done:done + _BLOCK])).require()
                done = min(done + _BLOCK, len(data))
                if on_progress is not None:
                    on_progress(done, len(data))
            session.run(Mle()).require()
        except Error as error:
            if not begun and failure_of(error) is not Failure.LOST:
                raise
            raise Incomplete("a media file", done, len(data)) from error

    @staticmethod
    def list(session: Session) -> Sequence[str]:
        return session.run(Lmf()).require()

    @staticmethod
    def show(session: Session, name: str) -> None:
        session.run(Dsi(name)).require()

    @staticmethod
    def remove(session: Session, *names: str) -> None:
        session.run(Dmf(names)).require()
