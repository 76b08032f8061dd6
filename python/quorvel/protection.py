# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Card numbers and data under working keys. None of these needs a link."""
import ctypes
from typing import Any

from . import _native
from ._records import RECORDS, hexadecimal, record, wiped
from .errors import illegal
from .immediate import MasterKey, WorkingKey
from .secret import Octets, Secret


def _text(value: str | Secret) -> Any:
    """A text in a buffer, which can be wiped."""
    secret = value if isinstance(value, Secret) else Secret(value)
    if 0 in secret._value:
        raise illegal("a text has a NUL in it")
    text = ctypes.create_string_buffer(len(secret._value) + 1)
    ctypes.memmove(text, (ctypes.c_char * len(secret._value)).from_buffer(secret._value), len(secret._value))
    return text


def _pan(name: str, value: str | Secret, key: WorkingKey | None = None) -> Secret:
    """The library's text is its own until the next call, so it is taken over under the lock, at once into the secret,
    and one more call wipes it."""
    with _native.lock, wiped(_text(value)) as text, wiped(key._record() if key else _text("")) as native:
        more = [ctypes.byref(native)] if key else []
        try:
            address = _native.call(name, text, *more)
            size = 0
            while ctypes.c_ubyte.from_address(address + size).value:
                size += 1
            result = Secret(bytes(size))
            ctypes.memmove((ctypes.c_char * size).from_buffer(result._value), address, size)
            return result
        finally:
            _native.call(name, b"", *more)


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
