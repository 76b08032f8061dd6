# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
import pytest
from peer import Peer
from quorvel import Link
from quorvel.testing import pin_pad  # noqa: F401


@pytest.fixture
def session(pin_pad):
    """A plain session with a virtual PIN pad, which has nothing to complain about."""
    with Link(pin_pad.port) as link, link.open() as opened:
        yield opened
    assert pin_pad.findings() == []


@pytest.fixture(scope="module")
def line():
    """Opening one takes the half second for which the line must be silent."""
    peer = Peer()
    with Link(peer.port) as link:
        yield peer, link


@pytest.fixture
def peer(line):
    line[1].send_can()  # whatever the last test has left
    line[1]._session = lambda: None
    line[0].answers, line[0].requests, line[0].cans = [], [], 0
    return line[0]


@pytest.fixture
def link(line):
    return line[1]
