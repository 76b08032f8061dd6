# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The serial ports of this machine."""
import ctypes
import os

from . import _native
from ._request import Owned
from .immediate import texts_of


def ports() -> list[str]:
    """The paths of the serial ports that can be opened. Each candidate is opened and closed again; nothing is sent."""
    with Owned("kor_string_list") as found:
        _native.call("kor_serial_list_ports", found.handle)
        return texts_of(found)


def probe(port: str | os.PathLike[str]) -> None:
    """Opens a port and closes it again, without a byte being sent. Raises what Link would."""
    opened: list[int] = []
    try:
        _native.keep(opened, "kor_serial_open", os.fsencode(port))
    finally:
        if opened and opened[0]:
            _native.call("kor_serial_close", ctypes.byref(ctypes.c_void_p(opened[0])))
