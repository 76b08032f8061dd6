// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <unistd.h>

#include "quorvel/kor/system.h"
#include "tests/abecs/comm/line.h"
#include "tests/core/signals.h"

namespace {

using namespace support;

class Send : public testing::Test {
protected:
    // Sends GIN, which the peer takes.
    void send_gin() {
        gin.fill("GIN00200");
        link.peer.request("GIN00200");
        EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, gin));
    }

    // With a pace to be kept from now on.
    void set_pace(int64_t interval) {
        EXPECT_NO_RAISE(abecs_comm_set_send_interval(link.comm, interval));
        link.comm->lastSend = kor_system_current_time_millis();
    }

    Link link;
    Packet gin{"GIN00200"};
};

using Pacing = Send;
using SessionEnd = Send;

TEST_F(Send, FramesThePacketRepeatsItAfterNakAndConsumesIt) {
    link.peer.expect("16 47454E 1333 1336 1337 1218 17 2D46"_hex).send(kAck);
    const Packet packet("GEN\x13\x16\x17\x12\x18");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
    EXPECT_EQ(packet.take(), "");
    link.peer.expect(kGin).send(kNak).expect(kGin).send(kNak).expect(kGin).send(kAck);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, gin));
    EXPECT_EQ(gin.take(), "");
}

TEST_F(Send, GivesUpAfterThreeNaksAndLeavesThePacketToBeSentAgain) {
    for (int i = 0; i < 3; ++i) { link.peer.expect(kGin).send(kNak); }
    link.comm->lastSend = 1234;
    EXPECT_EQ(raised_by_sending(link, gin), kRejected);
    EXPECT_EQ(link.comm->lastSend, 1234);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    link.peer.expect_silence(100ms).settle();
    link.peer.request("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, gin));
}

TEST_F(Send, TakesNoOtherAnswer) {
    for (const auto& [answer, shown] : {std::pair("04"_hex, "0x4"), std::pair("FF"_hex, "0xff")}) {
        link.peer.expect(kGin).send(answer);
        gin.fill("GIN00200");
        EXPECT_EQ(raised_by_sending(link, gin),
                  error(kProtocol, std::string("Protocol error (unknown packet response: ") + shown + ")"));
        EXPECT_EQ(gin.take(), "");
    }
}

TEST_F(Send, WaitsTwoSecondsForTheAnswer) {
    link.peer.expect(kGin);
    const Elapsed elapsed;
    EXPECT_EQ(raised_by_sending(link, gin), kTimeout);
    EXPECT_TRUE(elapsed.between(2s, 9s));
    EXPECT_EQ(gin.take(), "");
}

TEST_F(Pacing, KeepsSendsAtTheirDistance) {
    EXPECT_NO_RAISE(abecs_comm_set_send_interval(link.comm, 400));
    EXPECT_EQ(abecs_comm_get_send_interval(link.comm), 400);
    const Elapsed first;
    send_gin();
    send_gin();
    // The library's clock counts whole milliseconds.
    EXPECT_TRUE(first.between(399ms, 1900ms));
}

TEST_F(Pacing, WaitsAtMostTheIntervalWhenTheClockWasSetBack) {
    set_pace(200);
    link.comm->lastSend += 3'600'000;
    const Elapsed elapsed;
    send_gin();
    EXPECT_TRUE(elapsed.between(200ms, 2s));
    EXPECT_LE(link.comm->lastSend, kor_system_current_time_millis());
}

TEST_F(Pacing, IsSleptOutWhateverSignalsCome) {
    const Elapsed elapsed;
    set_pace(300);
    const Signals signals(0);
    send_gin();
    EXPECT_TRUE(elapsed.between(299ms, 2s));
    EXPECT_GT(signals.seen(), 10);
}

TEST_F(Pacing, OfANegativeIntervalIsNone) {
    set_pace(std::numeric_limits<int64_t>::min());
    const Elapsed elapsed;
    send_gin();
    EXPECT_TRUE(elapsed.between(0ms, 2s));
}

// A pace that is over ends on a blocked link, without a wait for an answer.
TEST_F(Pacing, HasNoUpperLimit) {
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    // More microseconds, milliseconds and nanoseconds than their counters may hold.
    for (const int64_t interval : {int64_t{4'294'968}, int64_t{1} << 32, std::numeric_limits<int64_t>::max()}) {
        set_pace(interval);
        const auto send = [&] {
            alarm(1);
            std::exit(raised_by_sending(link, gin).code);
        };
        EXPECT_EXIT(send(), testing::KilledBySignal(SIGALRM), "") << interval;
    }
}

TEST_F(Pacing, ComesBeforeTheRefusalOfABlockedLinkWhichSendsNothing) {
    set_pace(200);
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    const Elapsed elapsed;
    EXPECT_EQ(raised_by_sending(link, gin), error(kState, "Connection is blocked waiting for GCR response"));
    EXPECT_TRUE(elapsed.between(190ms, 2s));
}

// The session key's flag stays off, so that packets go plain.
void install_keys(AbecsComm* comm) {
    const AbecsWkPan wkPan{ABECS_WK_PAN_TYPE_TDES, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    abecs_comm_set_wk_pan(comm, &wkPan);
    comm->key.fill(0xAA);
}

TEST_F(SessionEnd, DropsTheKeysOnceItIsAcknowledged) {
    for (const char* id : {"CLO", "CLX"}) {
        install_keys(link.comm);
        link.peer.request(id);
        const Packet packet(id);
        EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
        EXPECT_EQ(link.comm->key, decltype(link.comm->key){}) << id;
        EXPECT_FALSE(link.comm->panProtected || link.comm->panKeyInstalled) << id;
    }
}

TEST_F(SessionEnd, KeepsTheKeysWhenItIsRejectedOrAnotherCommandIsSent) {
    install_keys(link.comm);
    const std::string clo = "16 434C4F 17 E2A8"_hex;
    link.peer.expect(clo).send(kNak).expect(clo).send(kNak).expect(clo).send(kNak).request("CLI");
    const Packet closing("CLO");
    const Packet other("CLI");
    EXPECT_EQ(raised_by_sending(link, closing), kRejected);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, other));
    EXPECT_EQ(link.comm->key[0], 0xAA);
    EXPECT_TRUE(link.comm->panProtected && link.comm->panKeyInstalled);
}

}  // namespace
