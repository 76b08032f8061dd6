// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <tuple>

#include "tests/abecs/comm/line.h"

// The PIN pad is unplugged at each point of an exchange: that is an I/O error at once, never a wait or a loop.
namespace {

using namespace support;

using Call = void (*)(AbecsComm*, AbecsPacket*);
constexpr Call kSending = [](AbecsComm* comm, AbecsPacket* request) { abecs_comm_send_packet(comm, request); };
constexpr Call kReading = [](AbecsComm* comm, AbecsPacket* out) { abecs_comm_read_packet(comm, out); };
constexpr Call kAborting = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_send_can(comm); };
constexpr Call kClosing = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_close(&comm); };

// Where a raise returns, nothing may go on with the dead line, let alone turn round on it.
TEST(HangUp, IsRaisedOnceAndAtOnceWhereverItComes) {
    const std::tuple<const char*, void (*)(Peer&), Call> rows[] = {
        {"after the second frame", [](Peer& peer) { peer.expect(kGin).send(kNak).expect(kGin).hang_up(); }, kSending},
        {"in the purge", [](Peer& peer) { peer.send(kBad).wait(100ms).hang_up(); }, kReading},
        {"after NAK", [](Peer& peer) { peer.send(kBad).expect(kNak).hang_up(); }, kReading},
        {"in CAN's purge", [](Peer& peer) { peer.expect(kCan).send(kNak).wait(100ms).hang_up(); }, kAborting},
        {"before it is closed", [](Peer& peer) { peer.hang_up().settle(); }, kClosing},
    };
    for (const auto& [where, script, call] : rows) {
        for (const bool returns : {false, true}) {
            Link link;
            script(link.peer);
            const Packet packet("GIN00200");
            const Elapsed elapsed;
            std::vector<Raised> raised;
            if (returns) {
                const ReturningRaises raises;
                call(link.comm, packet);
                raised = raises.all();
            } else {
                raised = {raised_by([&, act = call] { act(link.comm, packet); })};
            }
            EXPECT_TRUE(elapsed.between(0s, 1900ms)) << where;
            ASSERT_EQ(raised.size(), 1U) << where;
            EXPECT_EQ(raised[0].code, KOR_RESULT_IO_ERROR) << where;
            if (call == kClosing) { link.comm = nullptr; }
        }
    }
}

}  // namespace
