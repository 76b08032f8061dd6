// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

namespace {

using support::Elapsed;
using support::Link;
using support::Packet;
using support::to_hex;
using namespace std::chrono_literals;
using namespace support::literals;

const std::string kNak = "15"_hex;
const std::string kGood = "16 47494E303030 17 B695"_hex;
const std::string kBad = "16 47494E303030 17 B694"_hex;

TEST(Receive, TakesTheFrameApartAndSendsNoAck) {
    Link link;
    link.peer.send("16 4142 1333 1336 1337 17 F3D1"_hex).expect_silence(100ms);
    const Packet packet("what was in it before");
    EXPECT_EQ(link.call(abecs_comm_read_packet)(packet.get()), packet.get());
    EXPECT_EQ(to_hex(packet.take()), "41 42 13 16 17");
}

// A rest of the damaged frame is thrown away, and the waits after that purge are the full ones again.
TEST(Receive, AsksForADamagedFrameAgain) {
    Link link;
    link.peer.send(kBad + kGood).expect(kNak).wait(900ms).send("16 47"_hex).wait(900ms).send(kGood.substr(2));
    const Packet packet;
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), "GIN000");
}

TEST(Receive, GivesUpAfterThreeDamagedFrames) {
    Link link;
    link.peer.send(kBad).expect(kNak).send(kBad).expect(kNak).send(kBad).expect(kNak).send("left over");
    const Packet packet;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "No response in 3 attempts",
                  abecs_comm_read_packet(link.comm, packet.get()));
    link.peer.send(kGood);
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), "GIN000");
}

TEST(Receive, AsksForAFrameAgainThatStopsArriving) {
    Link link;
    const Elapsed elapsed;
    link.peer.send("16 12 47 13"_hex).expect(kNak).send(kGood);
    const Packet packet;
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), "GIN000");
    EXPECT_TRUE(elapsed.between(2s + 500ms, 8s));
}

TEST(Receive, RefusesAnotherFirstByteAndLeavesTheRestInTheLine) {
    Link link;
    link.peer.send("0615"_hex + kGood);
    const Packet packet;
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x6)",
                  abecs_comm_read_packet(link.comm, packet.get()));
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x15)",
                  abecs_comm_read_packet(link.comm, packet.get()));
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), "GIN000");
}

TEST(Receive, WaitsTenSecondsForAResponse) {
    Link link;
    const Packet packet;
    const Elapsed elapsed;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  abecs_comm_read_packet(link.comm, packet.get()));
    EXPECT_TRUE(elapsed.between(10s, 15s));
}

TEST(Receive, WaitsTwoSecondsWhileBlockedAndStaysBlocked) {
    Link link;
    link.call(abecs_comm_lock)("GCR");
    const Packet packet;
    const Elapsed elapsed;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  abecs_comm_read_packet(link.comm, packet.get()));
    EXPECT_TRUE(elapsed.between(2s, 5s));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

TEST(Receive, SilenceAfterANakIsAnOrdinaryTimeout) {
    Link link;
    link.call(abecs_comm_lock)("GCR");
    link.peer.send(kBad).expect(kNak);
    const Packet packet;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  abecs_comm_read_packet(link.comm, packet.get()));
}

TEST(Receive, TakesAsMuchAsAPacketHolds) {
    Link link;
    const std::string most(2044, 'A');
    link.peer.send(support::frame(most, 0xB3AE));
    const Packet packet;
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), most);
}

TEST(Receive, RefusesMoreThanAPacketHolds) {
    Link link;
    link.peer.send(support::frame(std::string(2045, 'A'), 0xFF77)).expect_silence(100ms);
    const Packet packet;
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)",
                  abecs_comm_read_packet(link.comm, packet.get()));
}

TEST(Receive, LeavesAnEncryptedFrameAsItCameWithoutASessionKey) {
    Link link;
    link.peer.send(support::encrypted_frame("0123456789ABCDEF", 0x5D68));
    const Packet packet;
    link.call(abecs_comm_read_packet)(packet.get());
    EXPECT_EQ(packet.take(), "0123456789ABCDEF");
}

TEST(Receive, RefusesAnEncryptedFrameOfBrokenBlocksEvenWithoutASessionKey) {
    Link link;
    link.peer.send(support::encrypted_frame("0123456789ABCDEFG", 0x8F31));
    const Packet packet;
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Malformed encrypted response",
                  abecs_comm_read_packet(link.comm, packet.get()));
}

TEST(Receive, NeedsALinkAndAPacket) {
    Link link;
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL", abecs_comm_read_packet(nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_comm_read_packet(link.comm, nullptr));
}

}  // namespace
