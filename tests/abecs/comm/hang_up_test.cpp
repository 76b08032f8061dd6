// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <tuple>

#include "tests/abecs/comm/line.h"

// The PIN pad is unplugged at each point of an exchange: that is an I/O error at once, never a wait or a loop.
namespace {

using namespace support;

template <typename Call>
void expect_io_error_at_once(const std::string& where, Call&& call) {
    const Elapsed elapsed;
    EXPECT_EQ(raised_by(call).code, KOR_RESULT_IO_ERROR) << where;
    EXPECT_TRUE(elapsed.between(0s, 1500ms)) << where;
}

TEST(HangUp, AfterEachByteOfARequestOrAResponse) {
    for (size_t count = 0; count <= kGin.size(); ++count) {
        Link link;
        link.peer.discard(count).hang_up();
        const Packet packet("GIN00200");
        expect_io_error_at_once("sent " + std::to_string(count), [&] { abecs_comm_send_packet(link.comm, packet); });
    }
    for (size_t count = 0; count < kGood.size(); ++count) {
        Link link;
        link.peer.send(kGood.substr(0, count)).wait(20ms).hang_up();
        const Packet packet;
        expect_io_error_at_once("read " + std::to_string(count), [&] { abecs_comm_read_packet(link.comm, packet); });
    }
}

using Call = void (*)(AbecsComm*, AbecsPacket*);
constexpr Call kSending = [](AbecsComm* comm, AbecsPacket* request) { abecs_comm_send_packet(comm, request); };
constexpr Call kReading = [](AbecsComm* comm, AbecsPacket* out) {
    EXPECT_EQ(abecs_comm_read_packet(comm, out), nullptr);
};
constexpr Call kAborting = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_send_can(comm); };
constexpr Call kClosing = [](AbecsComm* comm, AbecsPacket*) { abecs_comm_close(&comm); };

TEST(HangUp, DuringTheRepetitionsAndPurges) {
    const std::tuple<const char*, void (*)(Peer&), Call> rows[] = {
        {"after the second frame", [](Peer& peer) { peer.expect(kGin).send(kNak).expect(kGin).hang_up(); }, kSending},
        {"in the purge", [](Peer& peer) { peer.send(kBad).wait(100ms).hang_up(); }, kReading},
        {"after NAK", [](Peer& peer) { peer.send(kBad).expect(kNak).hang_up(); }, kReading},
        {"after CAN", [](Peer& peer) { peer.expect(kCan).hang_up(); }, kAborting},
        {"in CAN's purge", [](Peer& peer) { peer.expect(kCan).send(kNak).wait(100ms).hang_up(); }, kAborting},
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
    for (const Call call : {kSending, kReading, kAborting, kClosing}) {
        const ReturningRaises raises;
        call(link.comm, packet);
        ASSERT_EQ(raises.all().size(), 1U);
        EXPECT_EQ(raises.all().front().code, KOR_RESULT_IO_ERROR);
    }
    link.comm = nullptr;
}

}  // namespace
