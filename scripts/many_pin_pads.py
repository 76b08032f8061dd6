#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""many_pin_pads.py <quorvel-sim> [PIN PADS [SECONDS [BITS]]]: one program with so many PIN pads, 64, each on a line of so
many bits per second, 19200, and a till on each that asks without a pause for so many seconds, 20. Prints what the PIN pads'
program took of the processor, and fails where a till has got less than four fifths of what its line can carry, or where
PIN pads take some of it that nobody asks anything."""
import os
import selectors
import subprocess
import sys
import termios
import time
import tty

SYN, ETB, ACK = 0x16, 0x17, 0x06


def crc_of(covered: bytes) -> int:
    crc = 0
    for byte in covered:
        crc ^= byte << 8
        for _ in range(8):
            crc = (crc << 1 ^ 0x1021 if crc & 0x8000 else crc << 1) & 0xFFFF
    return crc


def frame(text: str) -> bytes:
    covered = text.encode() + bytes([ETB])
    return bytes([SYN]) + covered + crc_of(covered).to_bytes(2, "big")


class Till:
    """Wakes when an answer is whole, so that what it takes of the processor is little beside the PIN pads. OPN's has as many
    bytes as DSP's."""
    opening, opened = frame("OPN"), bytes([ACK]) + frame("OPN000")
    request, answer = frame("DSP032" + "WELCOME".ljust(32)), bytes([ACK]) + frame("DSP000")

    def __init__(self, path: str):
        self.port = os.open(path, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self.port)
        settings = termios.tcgetattr(self.port)
        settings[6][termios.VMIN] = len(self.answer)
        termios.tcsetattr(self.port, termios.TCSANOW, settings)
        os.write(self.port, self.opening)
        self.expect(self.opened)
        self.exchanges = 0

    def ask(self):
        os.write(self.port, self.request)

    def hear(self):
        self.expect(self.answer)
        self.exchanges += 1

    def expect(self, due: bytes):
        heard = os.read(self.port, len(due))
        if heard != due:
            sys.exit(f"many_pin_pads: a PIN pad has answered {heard.hex(' ')}")


IDLE_SECONDS = 2


def processor_time(process: int) -> float:
    with open(f"/proc/{process}/stat") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def main() -> int:
    program = sys.argv[1]
    count, seconds, bits = [int(each) for each in sys.argv[2:]] + [64, 20, 19200][len(sys.argv) - 2:]
    with subprocess.Popen([program, "--count", str(count), "--speed", str(bits)], stdout=subprocess.PIPE,
                          text=True) as pin_pads:
        tills = [Till(pin_pads.stdout.readline().split()[-1]) for _ in range(count)]
        time.sleep(1)
        idle = processor_time(pin_pads.pid)
        time.sleep(IDLE_SECONDS)
        idle = (processor_time(pin_pads.pid) - idle) / IDLE_SECONDS
        selector = selectors.DefaultSelector()
        for till in tills:
            selector.register(till.port, selectors.EVENT_READ, till)
            till.ask()
        begun, used = time.monotonic(), processor_time(pin_pads.pid)
        while time.monotonic() < begun + seconds:
            for key, _ in selector.select(1):
                key.data.hear()
                key.data.ask()
        took, used = time.monotonic() - begun, processor_time(pin_pads.pid) - used
        pin_pads.terminate()
    due = took * bits / (10 * (len(Till.request) + len(Till.answer)))
    done = sorted(till.exchanges for till in tills)
    print(f"{count} PIN pads at {bits} bits per second: {sum(done)} exchanges in {took:.1f} s,\n"
          f"{done[0] / due:.1%} to {done[-1] / due:.1%} of what each line can carry; "
          f"{used / took:.0%} of a processor, and {idle:.0%} when nobody asks")
    return 0 if done[0] >= 0.8 * due and idle < 0.02 and pin_pads.returncode == 0 else 1


sys.exit(main())
