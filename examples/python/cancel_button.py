#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Asks for a key until the cashier presses Enter at the till, or for so many seconds: cancel_button.py PORT SECONDS"""
import sys
import threading

from quorvel import Ended, Error, Gky, Link, Wait, Why


def watch(wait: Wait) -> None:
    """The cashier's button: a thread of its own, or a signal handler, ends the wait from outside."""
    sys.stdin.readline()
    wait.cancel()


def ask(port: str, seconds: float) -> str:
    with Link(port) as link, link.open() as session, session.start(Gky()) as wait:
        threading.Thread(target=watch, args=(wait,), daemon=True).start()
        print("waiting for a key", flush=True)
        try:
            return wait.get(deadline=seconds).require().name
        except Ended as ended:  # the PIN pad has confirmed it, and the session goes on
            return "the cashier has cancelled" if ended.why is Why.CANCELLED else "nobody has pressed a key"


if __name__ == "__main__":
    try:
        print(ask(sys.argv[1], float(sys.argv[2])))
    except Error as error:
        sys.exit(str(error))
