# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""A scripted PIN pad on a pseudo-terminal, which knows frames and nothing of the library."""
import binascii
import os
import pty
import threading
import tty

SYN, ETB, DC3, CAN, EOT, ACK = b"\x16", b"\x17", b"\x13", b"\x18", b"\x04", b"\x06"


def frame(packet):
    stuffed = b"".join(DC3 + bytes([byte + 0x20]) if byte in SYN + ETB + DC3 else bytes([byte]) for byte in packet)
    return SYN + stuffed + ETB + binascii.crc_hqx(packet + ETB, 0).to_bytes(2, "big")


class Peer:
    """Acknowledges each request, keeps it in `requests`, and answers it with what `answers` has next: packets, or bytes
    as they are behind None. A CAN it confirms, and counts."""

    def __init__(self):
        self.end, far = pty.openpty()
        tty.setraw(far)
        self.port = os.ttyname(far)
        self.far = far  # kept open, or the first close would end the line
        self.answers, self.requests, self.cans = [], [], 0
        threading.Thread(target=self._serve, daemon=True).start()

    def say(self, packet):
        os.write(self.end, frame(packet))

    def _serve(self):
        while byte := os.read(self.end, 1):
            if byte == CAN:
                self.cans += 1
                os.write(self.end, EOT)
            elif byte == SYN:
                self.requests.append(self._request())
                os.write(self.end, ACK)
                for packet in self.answers.pop(0) if self.answers else ():
                    self.say(packet)

    def _request(self):
        packet = b""
        while (byte := os.read(self.end, 1)) != ETB:
            packet += bytes([os.read(self.end, 1)[0] - 0x20]) if byte == DC3 else byte
        crc = os.read(self.end, 1) + os.read(self.end, 1)
        assert binascii.crc_hqx(packet + ETB, 0).to_bytes(2, "big") == crc
        return packet
