# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Card numbers and data under working keys. None of these needs a link."""
import ctypes
from typing import Any

from . import _native
from ._records import RECORDS, hexadecimal, record, wiped
from .immediate import MasterKey, WorkingKey
from .secret import Octets, Secret


def _text(value: str | Secret) -> bytes:
    return value.reveal_bytes() if isinstance(value, Secret) else value.encode("latin-1")


def _pan(name: str, value: str | Secret, key: WorkingKey | None = None) -> Secret:
    """The library's text is its own until the next call, so it is taken over under the lock. The result is copied
    byte by byte, to leave no other copy."""
    with _native.lock:
        if key is None:
            address = _native.call(name, _text(value))
        else:
            with wiped(key._record()) as native:
                address = _native.call(name, _text(value), ctypes.byref(native))
        text = bytearray()
        while byte := ctypes.c_ubyte.from_address(address + len(text)).value:
            text.append(byte)
    return Secret(text)


def pan_encrypt(pan: str | Secret, key: WorkingKey) -> Secret:
    """A clear card number as a command takes it to a PIN pad with the same working key."""
    return _pan("abecs_pan_encrypt", pan, key)


def pan_decrypt_track(track: str | Secret, key: WorkingKey) -> Secret:
    """The clear form of a track, or of a card number, as the PIN pad has enciphered it."""
    return _pan("abecs_pan_decrypt_track", track, key)


def pan_identify(track: str | Secret) -> Secret:
    """The card number in a clear track."""
    return _pan("abecs_pan_identify", track)


def _digits(name: str, size: int, value: Octets, key: Any) -> str:
    with wiped(key) as native, wiped(ctypes.create_string_buffer(size)) as out:
        _native.call(name, hexadecimal(value), ctypes.byref(native), out)
        return out.value.decode()


def prepare_working_key(key: Octets, master_key: MasterKey) -> str:
    """For Enb: a working key of 16 bytes, enciphered under the master key, in hexadecimal digits."""
    return _digits("abecs_cmd_enb_encrypt_wk", 33, key, master_key._record())


def prepare_block(data: Octets, key: WorkingKey) -> str:
    """For Enb to a PIN pad that has a working key for card numbers: what it makes the 8 bytes of again."""
    return _digits("abecs_cmd_enb_encode_data", 17, data, key._record())


def prepare_data(data: Octets, key: WorkingKey) -> str:
    """The same for GenEncrypt."""
    digits = hexadecimal(data)
    clear = record("AbecsCmdGen0303Data", size=len(digits), data=digits)
    with wiped(clear), wiped(key._record()) as native, wiped(RECORDS["AbecsCmdGen0303Data"]()) as out:
        _native.call("abecs_cmd_gen_03_03_encode_data", ctypes.byref(clear), ctypes.byref(native), ctypes.byref(out))
        return out.data.decode()
