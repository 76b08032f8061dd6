// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_LINK_H
#define QUORVEL_TESTS_SUPPORT_LINK_H

#include <gtest/gtest.h>
#include <new>

#include "abecs/comm/comm.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/serial.h"
#include "tests/support/peer.h"
#include "tests/support/raised.h"

namespace support {

// A link and the scripted peer at its other end. A command's case:
//
//     support::Link link;
//     link.peer.request("GIN00200").response("GIN000...");
//     AbecsCmdGinResponse out;
//     EXPECT_EQ(abecs_cmd_gin(link.comm, 0, &out), ABECS_RSP_STAT_ST_OK);
//
// The handle is built here: abecs_comm_open would cost every test the half second in which the line must be silent.
// All functions are inline, so that only programs that have the link layer need it.
class Link {
public:
    Link() {
        EXPECT_NO_RAISE(comm = new (kor_heap_alloc(sizeof(AbecsComm), 0)) AbecsComm{});
        EXPECT_NO_RAISE(kor::open_waker(comm->waker));
        EXPECT_NO_RAISE(comm->line.serial = kor_serial_open(peer.path().c_str()));
        const KorSerialConfig config{
            20, 19200, 8, KOR_SERIAL_STOP_BITS_ONE, KOR_SERIAL_PARITY_NONE, KOR_SERIAL_FLOW_CONTROL_NONE};
        EXPECT_NO_RAISE(kor_serial_config(comm->line.serial, &config));
    }

    // The peer first: closing throws away what it has not read yet.
    ~Link() {
        peer.finish();
        raised_by([&] { abecs_comm_close(&comm); });
    }

    Link(Link&&) = delete;

    Peer peer;
    AbecsComm* comm = nullptr;
};

}  // namespace support

#endif
