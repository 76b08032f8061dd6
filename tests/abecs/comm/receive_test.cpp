// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <ctime>

#include "tests/abecs/comm/line.h"

namespace {

int clockSpeed = 1;

}  // namespace

// The clock by which the library counts its waits can run faster, so that a long limit can be waited out. A single wait
// for input takes its full time all the same. This program is linked with -Wl,--wrap=clock_gettime.
extern "C" int __real_clock_gettime(clockid_t clock, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now);

int __wrap_clock_gettime(clockid_t clock, timespec* now) {
    constexpr int64_t kSecond = 1'000'000'000;
    const int result = __real_clock_gettime(clock, now);
    if (clock == CLOCK_MONOTONIC) {
        const int64_t fast = clockSpeed * (now->tv_sec * kSecond + now->tv_nsec);
        *now = {fast / kSecond, static_cast<decltype(now->tv_nsec)>(fast % kSecond)};
    }
    return result;
}

namespace {

using namespace support;

class Receive : public OnLink {
protected:
    void SetUp() override { packet.fill("what was in it before"); }
};

TEST_F(Receive, TakesTheFrameApartAndSendsNoAck) {
    link.peer.send("16 4142 1333 1336 1337 17 F3D1"_hex).expect_silence(100ms);
    EXPECT_EQ(to_hex(receive()), "41 42 13 16 17");
}

// A rest of the damaged frame is thrown away, and the waits after that purge are the full ones again.
TEST_F(Receive, AsksForADamagedFrameAgain) {
    link.peer.send(kBad + kGood).expect(kNak).wait(900ms).send("16 47"_hex).wait(900ms).send(kGood.substr(2));
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, GivesUpAfterThreeDamagedFrames) {
    link.peer.send(kBad).expect(kNak).send(kBad).expect(kNak).send(kBad).expect(kNak).send("left over");
    EXPECT_EQ(read(), error(KOR_RESULT_TIMEOUT_ERROR, "No response in 3 attempts"));
    link.peer.send(kGood);
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, AsksForAFrameAgainThatStopsArriving) {
    const Elapsed elapsed;
    link.peer.send("16 12 47 13"_hex).expect(kNak).send(kGood);
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_TRUE(elapsed.between(2s + 500ms, 9s));
}

// A byte each 1.9 s keeps every wait for the next one from ending.
TEST_F(Receive, AsksForAFrameAgainThatIsNotCompleteInThirtySeconds) {
    constexpr int kFactor = 10;
    clockSpeed = kFactor;
    link.peer.send("16"_hex);
    for (int i = 0; i < 16; ++i) { link.peer.wait(1900ms / kFactor).send("A"); }
    link.peer.expect(kNak).send(kGood);
    const Elapsed elapsed;
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_TRUE(elapsed.between(30s / kFactor + 500ms, 9s));
    clockSpeed = 1;
}

TEST_F(Receive, RefusesAnotherFirstByteAndLeavesTheRestInTheLine) {
    link.peer.send("0615"_hex + kGood);
    EXPECT_EQ(read(), error(kProtocol, "Protocol error (expected SYN, read 0x6)"));
    EXPECT_EQ(read(), error(kProtocol, "Protocol error (expected SYN, read 0x15)"));
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Receive, WaitsTenSecondsForAResponse) {
    const Elapsed elapsed;
    EXPECT_EQ(read(), kTimeout);
    EXPECT_TRUE(elapsed.between(10s, 19s));
}

// Silence is an ordinary time-out after a NAK too.
TEST_F(Receive, WaitsTwoSecondsWhileBlockedAndStaysBlocked) {
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    const Elapsed elapsed;
    EXPECT_EQ(read(), kTimeout);
    EXPECT_TRUE(elapsed.between(2s, 9s));
    link.peer.send(kBad).expect(kNak);
    EXPECT_EQ(read(), kTimeout);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

// The rest of a response that is too long is gone before the error leaves, so that the next command has its own
// answers.
TEST_F(Receive, TakesAsMuchAsAPacketHoldsAndNoMore) {
    const std::string most(2044, 'A');
    link.peer.send(frame(most, 0xB3AE));
    EXPECT_EQ(receive(), most);
    link.peer.send(frame(most + "AAAAA", 0xFF77)).wait(300ms).send("late").expect_silence(450ms);
    EXPECT_EQ(read(), too_full(1, 0));
    EXPECT_EQ(kor_serial_available(link.comm->line.serial), 0U);
}

}  // namespace
