// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/comm/fast_clock.h"
#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

namespace {

using namespace support;
using namespace std::chrono_literals;

const std::string kNak = "15"_hex;
const std::string kGood = "16 47494E303030 17 B695"_hex;
const std::string kBad = "16 47494E303030 17 B694"_hex;

class Receive : public testing::Test {
protected:
    std::string receive() {
        EXPECT_EQ(link.call(abecs_comm_read_packet)(packet), packet.get());
        return packet.take();
    }

    void expect_error(int16_t code, const char* detail) {
        EXPECT_RAISES(code, detail, abecs_comm_read_packet(link.comm, packet));
    }

    Link link;
    Packet packet{"what was in it before"};
};

TEST_F(Receive, TakesTheFrameApartAndSendsNoAck) {
    link.peer.send("16 4142 1333 1336 1337 17 F3D1"_hex).expect_silence(100ms);
    EXPECT_EQ(to_hex(receive()), "41 42 13 16 17");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_comm_read_packet(link.comm, nullptr));
}

// A rest of the damaged frame is thrown away, and the waits after that purge are the full ones again.
TEST_F(Receive, AsksForADamagedFrameAgain) {
    link.peer.send(kBad + kGood).expect(kNak).wait(900ms).send("16 47"_hex).wait(900ms).send(kGood.substr(2));
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, GivesUpAfterThreeDamagedFrames) {
    link.peer.send(kBad).expect(kNak).send(kBad).expect(kNak).send(kBad).expect(kNak).send("left over");
    expect_error(KOR_RESULT_TIMEOUT_ERROR, "No response in 3 attempts");
    link.peer.send(kGood);
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, AsksForAFrameAgainThatStopsArriving) {
    const Elapsed elapsed;
    link.peer.send("16 12 47 13"_hex).expect(kNak).send(kGood);
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_TRUE(elapsed.between(2s + 500ms, 4s));
}

// A byte each 1.9 s keeps every wait for the next one from ending.
TEST_F(Receive, AsksForAFrameAgainThatIsNotCompleteInThirtySeconds) {
    constexpr int kFactor = 10;
    const FastClock clock(kFactor);
    link.peer.send("16"_hex);
    for (int i = 0; i < 16; ++i) { link.peer.wait(1900ms / kFactor).send("A"); }
    link.peer.expect(kNak).send(kGood);
    const Elapsed elapsed;
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_TRUE(elapsed.between(30s / kFactor + 500ms, 5s));
}

TEST_F(Receive, RefusesAnotherFirstByteAndLeavesTheRestInTheLine) {
    link.peer.send("0615"_hex + kGood);
    expect_error(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x6)");
    expect_error(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x15)");
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, WaitsTenSecondsForAResponse) {
    const Elapsed elapsed;
    expect_error(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
    EXPECT_TRUE(elapsed.between(10s, 13s));
}

// Silence is an ordinary time-out after a NAK too.
TEST_F(Receive, WaitsTwoSecondsWhileBlockedAndStaysBlocked) {
    link.call(abecs_comm_lock)("GCR");
    const Elapsed elapsed;
    expect_error(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
    EXPECT_TRUE(elapsed.between(2s, 3500ms));
    link.peer.send(kBad).expect(kNak);
    expect_error(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

// The rest of a response that is too long is gone before the error leaves, so that the next command has its own
// answers.
TEST_F(Receive, TakesAsMuchAsAPacketHoldsAndNoMore) {
    const std::string most(2044, 'A');
    link.peer.send(support::frame(most, 0xB3AE));
    EXPECT_EQ(receive(), most);
    link.peer.send(support::frame(most + "AAAAA", 0xFF77)).wait(300ms).send("late").expect_silence(450ms);
    expect_error(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)");
    EXPECT_EQ(kor_serial_available(link.comm->serial), 0U);
    link.peer.settle();
    packet.fill("GIN00200");
    link.peer.request("GIN00200").send(kGood);
    link.call(abecs_comm_send_packet)(packet);
    EXPECT_EQ(receive(), "GIN000");
}

}  // namespace
