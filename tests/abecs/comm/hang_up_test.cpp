// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

// The PIN pad is unplugged at each point of an exchange: that is an I/O error at once, never a wait or a loop.
namespace {

using support::Elapsed;
using support::Link;
using support::Packet;
using support::raised_by;
using namespace std::chrono_literals;
using namespace support::literals;

const std::string kRequest = "16 47494E3030323030 17 EECA"_hex;
const std::string kResponse = "16 47494E303030 17 B695"_hex;
const std::string kBad = "16 47494E303030 17 B694"_hex;

template <typename Call>
void expect_io_error_at_once(const std::string& where, Call&& call) {
    const Elapsed elapsed;
    EXPECT_EQ(raised_by(call).code, KOR_RESULT_IO_ERROR) << where;
    EXPECT_TRUE(elapsed.between(0s, 1500ms)) << where;
}

TEST(HangUp, AfterEachByteOfARequest) {
    for (size_t count = 0; count <= kRequest.size(); ++count) {
        Link link;
        link.peer.discard(count).hang_up();
        const Packet packet("GIN00200");
        expect_io_error_at_once("after byte " + std::to_string(count),
                                [&] { abecs_comm_send_packet(link.comm, packet); });
    }
}

TEST(HangUp, AfterEachByteOfAResponse) {
    for (size_t count = 0; count < kResponse.size(); ++count) {
        Link link;
        link.peer.send(kResponse.substr(0, count)).wait(20ms).hang_up();
        const Packet packet;
        expect_io_error_at_once("after byte " + std::to_string(count),
                                [&] { abecs_comm_read_packet(link.comm, packet); });
    }
}

TEST(HangUp, DuringTheRepetitions) {
    Link sending;
    sending.peer.expect(kRequest).send("15"_hex).expect(kRequest).hang_up();
    const Packet packet("GIN00200");
    expect_io_error_at_once("after the second frame", [&] { abecs_comm_send_packet(sending.comm, packet); });
    Link purging;
    purging.peer.send(kBad).wait(100ms).hang_up();
    expect_io_error_at_once("in the purge", [&] { abecs_comm_read_packet(purging.comm, packet); });
    Link repeating;
    repeating.peer.send(kBad).expect("15"_hex).hang_up();
    expect_io_error_at_once("after NAK", [&] { abecs_comm_read_packet(repeating.comm, packet); });
}

TEST(HangUp, DuringCan) {
    Link waiting;
    waiting.peer.expect("18"_hex).hang_up();
    expect_io_error_at_once("after CAN", [&] { abecs_comm_send_can(waiting.comm); });
    Link purging;
    purging.peer.expect("18"_hex).send("15"_hex).wait(100ms).hang_up();
    expect_io_error_at_once("in the purge", [&] { abecs_comm_send_can(purging.comm); });
}

// Where a raise returns, nothing may go on with the dead line, let alone turn round on it.
TEST(HangUp, IsRaisedOnceOutsideEveryTryBlock) {
    Link link;
    link.peer.hang_up().settle();
    const Packet packet("GIN00200");
    void (*const calls[])(AbecsComm*, AbecsPacket*) = {
        [](AbecsComm* comm, AbecsPacket* request) { abecs_comm_send_packet(comm, request); },
        [](AbecsComm* comm, AbecsPacket* out) { EXPECT_EQ(abecs_comm_read_packet(comm, out), nullptr); },
        [](AbecsComm* comm, AbecsPacket*) { abecs_comm_send_can(comm); },
        [](AbecsComm* comm, AbecsPacket*) { abecs_comm_close(&comm); },
    };
    for (const auto& call : calls) {
        const support::ReturningRaises raises;
        call(link.comm, packet);
        EXPECT_EQ(raises.all().size(), 1U);
        EXPECT_EQ(raises.all().front().code, KOR_RESULT_IO_ERROR);
    }
    link.comm = nullptr;
}

}  // namespace
