// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

// The PIN pad is unplugged at each point of an exchange: that is an I/O error at once, never a wait or a loop.
namespace {

using namespace support;
using namespace std::chrono_literals;

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

using Call = void (*)(AbecsComm*, AbecsPacket*);
constexpr Call kSend = [](AbecsComm* comm, AbecsPacket* request) { abecs_comm_send_packet(comm, request); };
constexpr Call kRead = [](AbecsComm* comm, AbecsPacket* out) { EXPECT_EQ(abecs_comm_read_packet(comm, out), nullptr); };
constexpr Call kCan = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_send_can(comm); };
constexpr Call kClose = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_close(&comm); };

TEST(HangUp, DuringTheRepetitionsAndPurges) {
    const std::tuple<const char*, void (*)(Peer&), Call> rows[] = {
        {"after the second frame", [](Peer& peer) { peer.expect(kRequest).send("15"_hex).expect(kRequest).hang_up(); },
         kSend},
        {"in the purge", [](Peer& peer) { peer.send(kBad).wait(100ms).hang_up(); }, kRead},
        {"after NAK", [](Peer& peer) { peer.send(kBad).expect("15"_hex).hang_up(); }, kRead},
        {"after CAN", [](Peer& peer) { peer.expect("18"_hex).hang_up(); }, kCan},
        {"in CAN's purge", [](Peer& peer) { peer.expect("18"_hex).send("15"_hex).wait(100ms).hang_up(); }, kCan},
    };
    for (const auto& [where, script, function] : rows) {
        const Call call = function;
        Link link;
        script(link.peer);
        const Packet packet("GIN00200");
        expect_io_error_at_once(where, [&] { call(link.comm, packet); });
    }
}

// Where a raise returns, nothing may go on with the dead line, let alone turn round on it.
TEST(HangUp, IsRaisedOnceOutsideEveryTryBlock) {
    Link link;
    link.peer.hang_up().settle();
    const Packet packet("GIN00200");
    for (const Call call : {kSend, kRead, kCan, kClose}) {
        const support::ReturningRaises raises;
        call(link.comm, packet);
        ASSERT_EQ(raises.all().size(), 1U);
        EXPECT_EQ(raises.all().front().code, KOR_RESULT_IO_ERROR);
    }
    link.comm = nullptr;
}

}  // namespace
