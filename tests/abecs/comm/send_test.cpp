// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "quorvel/kor/system.h"
#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

namespace {

using support::Elapsed;
using support::Link;
using support::Packet;
using namespace std::chrono_literals;
using namespace support::literals;

const std::string kAck = "06"_hex;
const std::string kNak = "15"_hex;
const std::string kGin = "16 47494E3030323030 17 EECA"_hex;

TEST(Send, FramesThePacketAndConsumesIt) {
    Link link;
    link.peer.expect("16 47454E 1333 1336 1337 1218 17 2D46"_hex).send(kAck);
    const Packet packet("GEN\x13\x16\x17\x12\x18");
    link.call(abecs_comm_send_packet)(packet.get());
    EXPECT_EQ(abecs_packet_available_read(packet.get()), 0U);
}

TEST(Send, RepeatsTheSameBytesAfterNak) {
    Link link;
    link.peer.expect(kGin).send(kNak).expect(kGin).send(kNak).expect(kGin).send(kAck);
    const Packet packet("GIN00200");
    link.call(abecs_comm_send_packet)(packet.get());
}

TEST(Send, GivesUpAfterThreeNaks) {
    Link link;
    for (int i = 0; i < 3; ++i) { link.peer.expect(kGin).send(kNak); }
    link.comm->lastSend = 1234;
    const Packet packet("GIN00200");
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Packet was rejected", abecs_comm_send_packet(link.comm, packet.get()));
    EXPECT_EQ(link.comm->lastSend, 1234);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    link.peer.expect_silence(100ms).settle();
    link.peer.request("GIN00200");
    const Packet again("GIN00200");
    link.call(abecs_comm_send_packet)(again.get());
}

TEST(Send, TakesNoOtherAnswer) {
    const struct {
        std::string answer;
        const char* shown;
    } rows[] = {{"04"_hex, "0x4"}, {"16"_hex, "0x16"}, {"00"_hex, "0x0"}, {"FF"_hex, "0xff"}};
    for (const auto& row : rows) {
        Link link;
        link.peer.expect(kGin).send(row.answer);
        const Packet packet("GIN00200");
        EXPECT_EQ(support::raised_by([&] { abecs_comm_send_packet(link.comm, packet.get()); }),
                  support::error(KOR_RESULT_PROTOCOL_ERROR,
                                 std::string("Protocol error (unknown packet response: ") + row.shown + ")"));
    }
}

TEST(Send, WaitsTwoSecondsForTheAnswer) {
    Link link;
    link.peer.expect(kGin);
    const Packet packet("GIN00200");
    const Elapsed elapsed;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  abecs_comm_send_packet(link.comm, packet.get()));
    EXPECT_TRUE(elapsed.between(2s, 5s));
}

// The purge that ends the CANs leaves a short time-out on the port.
TEST(Send, WaitsTheFullTimeAgainAfterAPurge) {
    Link link;
    for (int i = 0; i < 3; ++i) { link.peer.expect("18"_hex).send(kNak); }
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Communication error while sending CAN", abecs_comm_send_can(link.comm));
    link.peer.expect(kGin).wait(900ms).send(kAck);
    const Packet packet("GIN00200");
    link.call(abecs_comm_send_packet)(packet.get());
}

TEST(Send, RefusesWhileBlockedBeforeAnythingIsWritten) {
    Link link;
    link.call(abecs_comm_lock)("GCR");
    const Packet packet("GIN00200");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Connection is blocked waiting for GCR response",
                  abecs_comm_send_packet(link.comm, packet.get()));
    link.call(abecs_comm_release)();
    link.peer.request("GIN00200");
    link.call(abecs_comm_send_packet)(packet.get());
}

TEST(Send, NeedsALinkAndAPacketWithAnId) {
    Link link;
    const Packet packet("GI");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL", abecs_comm_send_packet(nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'packet' is NULL", abecs_comm_send_packet(link.comm, nullptr));
    EXPECT_EQ(support::raised_by([&] { abecs_comm_send_packet(link.comm, packet.get()); }).code, KOR_RESULT_IO_ERROR);
    EXPECT_EQ(packet.take(), "GI");
}

TEST(Pacing, SendsKeepTheirDistance) {
    Link link;
    link.call(abecs_comm_set_send_interval)(400);
    EXPECT_EQ(abecs_comm_get_send_interval(link.comm), 400);
    const Elapsed first;
    for (int i = 0; i < 2; ++i) {
        link.peer.request("GIN00200");
        const Packet packet("GIN00200");
        link.call(abecs_comm_send_packet)(packet.get());
    }
    EXPECT_TRUE(first.between(400ms, 2s));
}

TEST(Pacing, WaitsAtMostTheIntervalWhenTheClockWasSetBack) {
    Link link;
    link.call(abecs_comm_set_send_interval)(200);
    link.comm->lastSend = kor_system_current_time_millis() + 3'600'000;
    link.peer.request("GIN00200");
    const Packet packet("GIN00200");
    const Elapsed elapsed;
    link.call(abecs_comm_send_packet)(packet.get());
    EXPECT_TRUE(elapsed.between(200ms, 2s));
    EXPECT_LE(link.comm->lastSend, kor_system_current_time_millis());
}

TEST(Pacing, ComesBeforeTheTestForABlockedLink) {
    Link link;
    link.call(abecs_comm_set_send_interval)(200);
    link.comm->lastSend = kor_system_current_time_millis();
    link.call(abecs_comm_lock)("GCR");
    const Packet packet("GIN00200");
    const Elapsed elapsed;
    EXPECT_EQ(support::raised_by([&] { abecs_comm_send_packet(link.comm, packet.get()); }).code,
              KOR_RESULT_ILLEGAL_STATE);
    EXPECT_TRUE(elapsed.between(190ms, 2s));
}

// The session key's flag stays off, so that packets go plain.
void install_keys(AbecsComm* comm) {
    const AbecsWkPan wkPan{ABECS_WK_PAN_TYPE_TDES, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    abecs_comm_set_wk_pan(comm, &wkPan);
    comm->key.fill(0xAA);
}

TEST(SessionEnd, DropsTheKeysOnceItIsAcknowledged) {
    for (const char* id : {"CLO", "CLX"}) {
        Link link;
        install_keys(link.comm);
        link.peer.request(id);
        const Packet packet(id);
        link.call(abecs_comm_send_packet)(packet.get());
        EXPECT_EQ(link.comm->key, decltype(link.comm->key){}) << id;
        EXPECT_FALSE(link.comm->panProtected) << id;
        EXPECT_FALSE(link.comm->panKeyInstalled) << id;
    }
}

TEST(SessionEnd, KeepsTheKeysWhenItIsRejectedOrAnotherCommandIsSent) {
    Link link;
    install_keys(link.comm);
    const std::string clo = "16 434C4F 17 E2A8"_hex;
    link.peer.expect(clo).send(kNak).expect(clo).send(kNak).expect(clo).send(kNak).request("CLI");
    const Packet closing("CLO");
    const Packet other("CLI");
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Packet was rejected", abecs_comm_send_packet(link.comm, closing.get()));
    link.call(abecs_comm_send_packet)(other.get());
    EXPECT_EQ(link.comm->key[0], 0xAA);
    EXPECT_TRUE(link.comm->panProtected);
    EXPECT_TRUE(link.comm->panKeyInstalled);
}

TEST(SessionStart, IsSentPlainEvenInsideASession) {
    Link link;
    const uint8_t key[16] = {1};
    link.call(abecs_comm_set_key)(key);
    link.peer.expect("16 4F504E 17 A8A9"_hex).send(kAck);
    const Packet packet("OPN");
    link.call(abecs_comm_send_packet)(packet.get());
    EXPECT_TRUE(link.comm->keySet);
}

}  // namespace
