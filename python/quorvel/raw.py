# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Requests that the package has no class for."""
import ctypes
from collections.abc import Iterator, Sequence
from dataclasses import dataclass, field
from typing import Any

from . import _native
from ._records import decoded
from ._request import Call, Outcome, Owned, Poll, Request
from .errors import Code, Error, Status, illegal, malformed
from .items import Items
from .secret import Octets, octets


@dataclass(frozen=True)
class RawAnswer:
    """The blocks of an answer. `items` reads them as parameters."""

    blocks: tuple[bytes, ...] = field(repr=False)

    @property
    def items(self) -> Items:
        return Items(dict(pair for block in self.blocks for pair in _parameters(block)))


@dataclass(frozen=True)
class Raw(Request[RawAnswer]):
    """Any command, with parameters or with blocks of its own. With `waits` it waits for somebody."""

    id: str
    parameters: Sequence[tuple[int, Octets]] = field(default=(), repr=False)
    blocks: Sequence[bytes] = field(default=(), repr=False)
    waits: bool = False

    def _run(self, call: Call) -> Outcome[RawAnswer]:
        self._send(call)
        return self._outcome(_receive(call))

    def _start(self, call: Call) -> Poll[RawAnswer]:
        with _native.lock:  # nothing comes between sending and blocking
            self._send(call)
            call("abecs_comm_lock", self._name())

        def poll(notice: Any) -> Outcome[RawAnswer]:
            try:
                packet = _receive(call)
            except Error as error:
                if error.code is not Code.TIMEOUT_ERROR:
                    raise
                return Status.PROCESSING, RawAnswer
            if packet.startswith(b"NTM"):
                notice.value = next(_blocks(packet[6:]), b"")[:32]
                return Status.NOTIFICATION, RawAnswer
            outcome = self._outcome(packet)
            call("abecs_comm_release")
            return outcome
        return poll

    def _name(self) -> bytes:
        if not (len(self.id) == 3 and self.id.isascii()):
            raise illegal(f"{self.id} is no command's id")
        return self.id.encode()

    def _send(self, call: Call) -> None:
        if self.parameters and self.blocks:
            raise illegal("a request has either parameters or blocks")
        with Owned("abecs_packet") as packet:
            if self.parameters:
                self._lay_out(packet)
            else:
                data = self._name() + b"".join(_counted(block) for block in self.blocks)
                packet("write_field_b", data, len(data))
            call("abecs_comm_send_packet", packet.handle)

    def _lay_out(self, packet: Owned) -> None:
        with Owned("abecs_cmd_builder") as builder, Owned("abecs_param") as parameter:
            builder("set_cmd_id", self._name())
            for id, value in self.parameters:
                data = octets(value)
                parameter("set_id", id)
                parameter("write_field_b", data, len(data))
                builder("add_param", parameter.handle)
            builder("build", packet.handle)

    def _outcome(self, packet: bytes) -> Outcome[RawAnswer]:
        if not packet.startswith(self._name()) or not packet[3:6].isdigit():
            raise malformed(f"the answer is none to {self.id}")
        try:
            status = Status(int(packet[3:6]))
        except ValueError:
            raise malformed(f"there is no status {decoded(packet[3:6])}") from None
        blocks = tuple(_blocks(packet[6:]))
        return status, lambda: RawAnswer(blocks)


def _receive(call: Call) -> bytes:
    with Owned("abecs_packet") as packet:
        call("abecs_comm_read_packet", packet.handle)
        size = packet("available_read")
        data = ctypes.create_string_buffer(size + 1)
        packet("read_field_b", data, size, size)
        return data.raw[:size]


def _counted(block: bytes) -> bytes:
    if len(block) > 999:
        raise illegal(f"a block of {len(block)} bytes is too long")
    return b"%03d" % len(block) + block


def _blocks(data: bytes) -> Iterator[bytes]:
    while data:
        size = int(data[:3]) if data[:3].isdigit() else len(data)
        if len(data) < 3 + size:
            raise malformed("a block is longer than the answer")
        yield data[3:3 + size]
        data = data[3 + size:]


def _parameters(block: bytes) -> Iterator[tuple[int, bytes]]:
    while block:
        size = int.from_bytes(block[2:4], "big")
        if len(block) < 4 + size:
            raise malformed("a parameter is longer than its block")
        yield int.from_bytes(block[:2], "big"), block[4:4 + size]
        block = block[4 + size:]
