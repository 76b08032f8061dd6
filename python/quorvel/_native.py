# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The C library: loaded once, called by one thread at a time, its raises turned into exceptions.

It is called with ctypes and not with cffi. cffi's fast mode compiles a module for each version of Python, and its
other mode needs a package besides the standard library; ctypes needs neither. What speaks against ctypes is that
nothing checks its prototypes against the headers: a test does. What speaks against any such interface is that the
library raises by longjmp, which must not cross the interpreter's frames. It does not: no try block is ever opened here,
so a raise calls the uncaught handler, and when that returns, the function that raised leaves in the ordinary way.
"""
import ctypes
import itertools
import os
import re
import threading
from collections.abc import Callable
from typing import Any

from ._prototypes import PROTOTYPES
from .errors import Code, Error, illegal

SONAME = "libquorvel0.so.0"

# The library is to be used from one thread at a time, whatever the links. Reentrant, for several calls in a row.
lock = threading.RLock()

# What was raised in the call in progress, by code, in the order of the raises: after the first one the function goes on
# with harmless values, of which it may complain as well. The handler is a method of a C type and no Python function,
# because the interpreter runs a pending KeyboardInterrupt at the start of one, which would lose the error.
_raised: dict[int, bytes | None] = {}
_handler = ctypes.CFUNCTYPE(None, ctypes.c_int16, ctypes.c_char_p)(_raised.setdefault)
_calling = False
_library: ctypes.CDLL | None = None

_NUMBERS: dict[str, Any] = {
    "bool": ctypes.c_bool, "int": ctypes.c_int, "size_t": ctypes.c_size_t, "char": ctypes.c_char,
    **{f"{sign}int{bits}_t": getattr(ctypes, f"c_{sign}int{bits}") for sign in ("", "u") for bits in (8, 16, 32, 64)},
    "KorResult_E": ctypes.c_int16,
}


def c_type(name: str) -> Any:
    """A parameter's or a result's type: texts, other pointers, numbers; an enumeration is an int32_t."""
    if name in ("char*", "const char*"):
        return ctypes.c_char_p
    if name.endswith(("*", "Fn", "Handler", "]")):
        return ctypes.c_void_p
    return None if name == "void" else _NUMBERS.get(name, ctypes.c_int32)


class _Function:
    """A prototype, bound when it is called first."""

    def __init__(self, name: str, result: str, arguments: list[str]) -> None:
        self.name = name
        # A card number in clear is not copied by ctypes: whoever calls does that, and wipes the copy.
        self.result = ctypes.c_void_p if name.startswith("abecs_pan_") else c_type(result)
        self.declared = arguments
        self.types = [c_type(argument) for argument in arguments]
        self.bound: Callable[..., Any] | None = None

    def bind(self) -> Callable[..., Any]:
        if self.bound is None:
            try:
                function = library()[self.name]
            except AttributeError:
                raise ImportError(f"quorvel: the {SONAME} that was loaded is too old: it has no {self.name}") from None
            function.restype, function.argtypes = self.result, self.types
            self.bound = function
        return self.bound

    def check(self, arguments: tuple[Any, ...]) -> None:
        """ctypes cuts a number to the size of its type, and C a text at its first NUL."""
        for value, kind, declared in zip(arguments, self.types, self.declared, strict=True):
            if isinstance(value, int) and kind is not ctypes.c_void_p:
                check_number(value, kind, f"{declared} of {self.name}")
            elif isinstance(value, bytes) and b"\0" in value and kind is ctypes.c_char_p:
                raise illegal(f"a text for {self.name} has a NUL in it")


def check_number(value: int, kind: Any, where: str) -> None:
    if kind(value).value != value:
        raise illegal(f"{int(value)} does not fit into {where}")


def _parse(prototypes: str) -> dict[str, _Function]:
    functions = {}
    for line in prototypes.strip().splitlines():
        match = re.fullmatch(r"(.*?)\s*(\w+)\((.*)\)", line)
        assert match, line
        functions[match[2]] = _Function(match[2], match[1], match[3].split(", ") if match[3] else [])
    return functions


_functions = _parse(PROTOTYPES)


def library() -> ctypes.CDLL:
    """The library: the file that QUORVEL_LIBRARY names, or else the one that the loader finds."""
    global _library
    with lock:
        if _library is None:
            name = os.environ.get("QUORVEL_LIBRARY") or SONAME
            try:
                loaded = ctypes.CDLL(name)
            except OSError as error:
                raise ImportError(f"quorvel: cannot load {name} ({error}). Install the library, or let the environment "
                                  "variable QUORVEL_LIBRARY name its file.") from None
            loaded["kor_exception_set_uncaught_handler"](_handler)
            _library = loaded
        return _library


def keep(results: list[Any], name: str, *arguments: Any) -> None:
    """Calls a function of the library; raises what it raised first, and nothing else that it raised. The result goes
    into `results` within one call of C's, so that no interrupt of the interpreter's comes in between and loses it."""
    global _calling
    function = _functions[name]
    function.check(arguments)
    with lock:
        bound = function.bind()
        if _calling:
            raise Error(Code.ILLEGAL_STATE, f"[KOR_RESULT_ILLEGAL_STATE] {name} was called in the middle of a call")
        _raised.clear()
        _calling = True
        try:
            results.extend(itertools.starmap(bound, (arguments,)))
        finally:
            _calling = False
        for code, text in _raised.items():
            raise Error(code, (text or b"").decode("latin-1"))


def call(name: str, *arguments: Any) -> Any:
    """The same; returns the result."""
    results: list[Any] = []
    keep(results, name, *arguments)
    return results[0]


def _begin_child() -> None:
    """After a fork nobody is left to release the lock, and the call in which it was held never ends."""
    global lock, _calling
    lock = threading.RLock()
    _calling = False


os.register_at_fork(after_in_child=_begin_child)
