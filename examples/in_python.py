#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Shows a text on the PIN pad from Python: in_python.py libquorvel0.so.0 /dev/ttyACM0 TEXT"""
import ctypes
import sys


class Error(Exception):
    """What the library raised: a KOR_RESULT code and its text."""


class Quorvel:
    def __init__(self, path):
        self.library = ctypes.CDLL(path)
        self.raised = None
        # Kept, because the library goes on calling it. It returns, and so does the function that raised.
        self.handler = ctypes.CFUNCTYPE(None, ctypes.c_int16, ctypes.c_char_p)(self.keep)
        self.library.kor_exception_set_uncaught_handler(self.handler)

    def keep(self, code, message):
        self.raised = self.raised or Error(code, (message or b"").decode())

    def call(self, name, *arguments, result=ctypes.c_int32):
        function = self.library[name]
        function.restype = result
        self.raised = None
        value = function(*arguments)
        if self.raised:
            raise self.raised
        return value


def show(quorvel, port, text):
    link = ctypes.c_void_p(quorvel.call("abecs_comm_open", port.encode(), result=ctypes.c_void_p))
    try:
        quorvel.call("abecs_cmd_opn", link, False)
        try:
            return quorvel.call("abecs_cmd_dsp", link, text.encode())
        finally:
            quorvel.call("abecs_cmd_clo", link, text.encode()[:32])
    finally:
        quorvel.call("abecs_comm_close", ctypes.byref(link), result=None)


try:
    print("RSP_STAT", show(Quorvel(sys.argv[1]), sys.argv[2], sys.argv[3]))
except Error as error:
    sys.exit(f"code {error.args[0]}: {error.args[1]}")
