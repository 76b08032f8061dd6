# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Values that must not be shown, and the forms in which bytes are given."""
import hmac
from typing import Any, NoReturn, Union

from .errors import illegal


class Secret:
    """A number, a key or a card number. It is shown by reveal() only, and neither printed, compared with == nor
    pickled. Its own bytes are overwritten by wipe(), at the end of a `with` and when the object goes; what reveal()
    gave stays with whoever asked for it."""

    __slots__ = ("_value",)

    def __init__(self, value: Union[bytes, bytearray, str]) -> None:
        self._value = bytearray(value, "latin-1") if isinstance(value, str) else bytearray(value)

    def reveal(self) -> str:
        return self._value.decode("latin-1")

    def reveal_bytes(self) -> bytes:
        return bytes(self._value)

    def equals(self, other: Union["Secret", bytes, str]) -> bool:
        """Takes as long whatever the place of the first difference."""
        right = other if isinstance(other, Secret) else Secret(other)
        return hmac.compare_digest(self._value, right._value)

    def wipe(self) -> None:
        self._value[:] = bytes(len(self._value))

    def __enter__(self) -> "Secret":
        return self

    def __exit__(self, *_: object) -> None:
        self.wipe()

    def __del__(self) -> None:
        if hasattr(self, "_value"):
            self.wipe()

    def __repr__(self) -> str:
        return "Secret(withheld)"

    def __eq__(self, other: object) -> NoReturn:
        raise TypeError("secrets are compared with equals()")

    __hash__ = None  # type: ignore[assignment]

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError("a secret is neither copied nor pickled")


# Bytes; a text is their hexadecimal digits, between which there may be blanks.
Octets = Union[bytes, bytearray, str, Secret]


def octets(value: Octets, size: int | None = None) -> bytes:
    """The bytes; `size` of them, where C takes so many without asking."""
    try:
        data = bytes.fromhex(value) if isinstance(value, str) else \
            value.reveal_bytes() if isinstance(value, Secret) else bytes(value)
    except ValueError:
        raise illegal("a text is not of hexadecimal digits") from None
    if size is not None and len(data) != size:
        raise illegal(f"{len(data)} bytes where {size} are due")
    return data
