// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <termios.h>

#include "quorvel/kor/exception.h"
#include "quorvel/kor/system.h"
#include "tests/abecs/comm/line.h"
#include "tests/core/temp_dir.h"

namespace {

using namespace support;

TEST(Open, SetsAndClearsTheLineAndSendsCan) {
    Peer peer;
    peer.send("stale").wait(300ms).send("more").expect_silence(450ms).accept_can();
    AbecsComm* comm = nullptr;
    const Elapsed elapsed;
    EXPECT_NO_RAISE(comm = abecs_comm_open(peer.path().c_str()));
    ASSERT_NE(comm, nullptr);
    EXPECT_TRUE(elapsed.between(800ms, 5s));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(comm), "");
    EXPECT_EQ(abecs_comm_get_send_interval(comm), 0);
    EXPECT_FALSE(comm->keySet || comm->panProtected || comm->panKeyInstalled);
    EXPECT_LE(kor_system_current_time_millis() - comm->lastSend, 1000);
    const termios line = peer.settings();
    EXPECT_EQ(cfgetospeed(&line), speed_t{B19200});
    EXPECT_EQ(line.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), tcflag_t{CS8});
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), 0U);
    peer.request("GIN00200");
    const Packet packet("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(comm, packet));
    peer.finish();
    EXPECT_NO_RAISE(abecs_comm_close(&comm));
    EXPECT_EQ(comm, nullptr);
}

TEST(Open, ThatFailsHasItsOwnError) {
    Peer silent;
    silent.expect(kCan).expect(kCan).expect(kCan);
    const std::pair<std::string, Raised> rows[] = {
        {"/dev/nothing", error(KOR_RESULT_FILE_NOT_FOUND, "No such port: /dev/nothing")},
        {"/dev/null", error(kIo, "tcgetattr() error: 25")},
        {silent.path(), kNoCan}};
    const Elapsed elapsed;
    for (const auto& [path, error] : rows) {
        AbecsComm* comm = nullptr;
        EXPECT_EQ(raised_by([&, name = path.c_str()] { comm = abecs_comm_open(name); }), error) << path;
        EXPECT_EQ(comm, nullptr);
    }
    EXPECT_TRUE(elapsed.between(6500ms, 14s));
}

// Applications close in the clean-up of the block that failed; they want to know why it failed, not that the line did.
TEST(Close, WhileAnErrorIsPendingLeavesThatErrorAndReleasesEverything) {
    Link link;
    link.peer.hang_up().settle();
    const size_t before = open_descriptors();
    const Raised raised = raised_by([&] {
        KOR_TRY { kor_exception_throw(KOR_RESULT_PROTOCOL_ERROR, "the first one"); }
        KOR_CLEANUP { abecs_comm_close(&link.comm); }
        KOR_END_TRY;
    });
    EXPECT_EQ(raised, (Raised{KOR_RESULT_PROTOCOL_ERROR, "the first one"}));
    EXPECT_EQ(link.comm, nullptr);
    EXPECT_EQ(open_descriptors(), before - 2);
}

TEST(Can, IsSentAgainWhenItIsIgnoredAndReleasesABlockedLink) {
    Link link;
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    link.peer.expect(kCan).expect_silence(1900ms).accept_can();
    const Elapsed elapsed;
    EXPECT_NO_RAISE(abecs_comm_send_can(link.comm));
    EXPECT_TRUE(elapsed.between(2s, 9s));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

// A response was on its way. The EOT among the purged bytes must not count as an answer, and the next CAN has the full
// time to be answered.
TEST(Can, IsSentAgainAfterAPurgeWhenAnotherByteAnswers) {
    Link link;
    link.peer.expect(kCan).send(kGood).wait(300ms).send(kEot).expect_silence(450ms);
    link.peer.expect(kCan).wait(900ms).send(kEot);
    EXPECT_NO_RAISE(abecs_comm_send_can(link.comm));
    EXPECT_EQ(kor_serial_available(link.comm->line.serial), 0U);
}

// The purge that ends the CANs leaves a short time-out on the port.
TEST(Can, ThatFailsThreeTimesLeavesTheLinkBlockedAndNoShortWait) {
    Link link;
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    for (int i = 0; i < 3; ++i) { link.peer.expect(kCan).send(kNak); }
    EXPECT_EQ(raised_by([&] { abecs_comm_send_can(link.comm); }), kNoCan);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
    EXPECT_NO_RAISE(abecs_comm_release(link.comm));
    link.peer.expect(kGin).wait(900ms).send(kAck);
    const Packet packet("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet.get()));
}

}  // namespace
