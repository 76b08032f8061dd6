# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""A virtual PIN pad for tests: quorvel-sim, started, played by its control socket, and ended.

    with virtual_pin_pad() as pin_pad, Link(pin_pad.port) as link: ...

With pytest, `from quorvel.testing import pin_pad` in a conftest.py makes one of it for each test that has an argument
of that name."""
import json
import os
import select
import shutil
import socket
import subprocess
import tempfile
import threading
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import Any

_PATIENCE = 10
# What a person does, and the member that says what with.
_ACTS = {"press": "key", "type": "digits", "choose": "option", "swipe": "card", "insert": "card", "tap": "card",
         "remove": "", "notify": "text"}


class ControlError(Exception):
    """What the virtual PIN pad does not do, and why."""


class PinPad:
    """A running virtual PIN pad: the person at it, a look at it, and faults on its line. What a request may say is
    told in docs/control-socket.md."""

    def __init__(self, process: "subprocess.Popen[str]", port: Path, control: Path) -> None:
        self.process = process
        self.port = str(port)
        self._lock = threading.Lock()
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.connect(str(control))
        self._lines = self._socket.makefile("r", encoding="utf-8")

    def ask(self, do: str, **members: Any) -> dict[str, Any]:
        """Any request of the control socket; the members of its answer."""
        with self._lock:
            self._socket.sendall(json.dumps({"do": do, **members}).encode() + b"\n")
            line = self._lines.readline()
        answer = json.loads(line) if line else {"ok": False, "error": "the virtual PIN pad has ended"}
        if not answer.pop("ok"):
            raise ControlError(answer["error"])
        return answer

    def press(self, key: str) -> None:
        """0 to 9, enter, clear, cancel, up, down, f1 to f4."""
        self.ask("press", key=key)

    def type(self, digits: str) -> None:
        """Digits, and then enter."""
        self.ask("type", digits=digits)

    def choose(self, option: int) -> None:
        """An option of a menu, counted from 1."""
        self.ask("choose", option=option)

    def swipe(self, card: str) -> None:
        self.ask("swipe", card=card)

    def insert(self, card: str) -> None:
        self.ask("insert", card=card)

    def tap(self, card: str) -> None:
        self.ask("tap", card=card)

    def remove(self) -> None:
        self.ask("remove")

    def notify(self, text: str) -> None:
        """The PIN pad tells the host something."""
        self.ask("notify", text=text)

    def when(self, command: str, *acts: tuple[Any, ...], keep: bool = False) -> None:
        """Plans what happens while the next command of that id waits: when("GPN", ("type", "1234")). What the session
        does not use is dropped when it ends, unless it is to be kept."""
        plan = [{"do": name, **{_ACTS[name]: value for value in rest}} for name, *rest in acts]
        self.ask("when", command=command, acts=plan, keep=keep)

    def reset(self, what: str = "all") -> None:
        """All as at first, or cards, tables, keys, pins, media, plans, faults or findings."""
        self.ask("reset", what=what)

    def cards(self) -> list[str]:
        return self.ask("cards")["cards"]

    def wait_for(self, command: str | None = None, seconds: float = _PATIENCE) -> None:
        """Returns as soon as the command waits; without one, any."""
        named = {} if command is None else {"command": command}
        self.ask("await", **named, ms=int(seconds * 1000))

    def state(self) -> dict[str, Any]:
        return self.ask("state")

    def screen(self) -> dict[str, Any]:
        return self.ask("screen")

    def findings(self) -> list[dict[str, Any]]:
        """What the host did wrong, or the PIN pad could not do."""
        return self.ask("findings")["findings"]

    def clear_findings(self) -> None:
        self.ask("clear-findings")

    def traffic(self, last: int = 20) -> list[dict[str, str]]:
        return self.ask("traffic", last=last)["traffic"]

    def fault(self, fault: str, **members: Any) -> None:
        self.ask("fault", fault=fault, **members)

    def faults(self) -> list[dict[str, Any]]:
        return self.ask("faults")["faults"]

    def clear_faults(self) -> None:
        self.ask("clear-faults")

    def hang_up(self, ms: int) -> None:
        """Unplugs it for so long."""
        self.ask("hang-up", ms=ms)

    def close(self) -> None:
        self._lines.close()
        self._socket.close()


@contextmanager
def virtual_pin_pad(keys: str | os.PathLike[str] | None = None, scenario: str | os.PathLike[str] | None = None,
                    ends: str | None = None, speed: int | None = None, seed: int | None = None,
                    trace: bool = False) -> Iterator[PinPad]:
    """A virtual PIN pad for the time of a `with`, by the program that QUORVEL_SIM names, or quorvel-sim. The arguments
    are its options; --trace goes to standard error. Whether a scenario went as expected its exit status tells:
    `pin_pad.process.wait()` is 0 then."""
    program = os.environ.get("QUORVEL_SIM") or shutil.which("quorvel-sim")
    if program is None:
        raise FileNotFoundError("quorvel-sim is not installed: let the environment variable QUORVEL_SIM name it")
    with tempfile.TemporaryDirectory(prefix="quorvel-") as folder:
        port, control = Path(folder, "port"), Path(folder, "control")
        command = [program, "--link", str(port), "--control", str(control)] + ["--trace"] * trace
        for name, value in {"keys": keys, "scenario": scenario, "ends": ends, "speed": speed, "seed": seed}.items():
            if value is not None:
                command += [f"--{name}", os.fspath(value) if isinstance(value, os.PathLike) else str(value)]
        with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
            try:
                _await_ready(process)
                pin_pad = PinPad(process, port, control)
                try:
                    yield pin_pad
                finally:
                    pin_pad.close()
            finally:
                _end(process)


def _await_ready(process: "subprocess.Popen[str]") -> None:
    assert process.stdout is not None
    readable, _, _ = select.select([process.stdout], [], [], _PATIENCE)
    if not readable or not process.stdout.readline().startswith("READY"):
        raise RuntimeError("the virtual PIN pad has not started")


def _end(process: "subprocess.Popen[str]") -> None:
    process.terminate()
    try:
        process.wait(_PATIENCE)
    except subprocess.TimeoutExpired:
        process.kill()


try:
    import pytest
except ImportError:
    pass
else:
    @pytest.fixture
    def pin_pad() -> Iterator[PinPad]:
        with virtual_pin_pad() as running:
            yield running
