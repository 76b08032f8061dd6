// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <termios.h>

#include "quorvel/kor/exception.h"
#include "quorvel/kor/system.h"
#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

namespace {

using support::Elapsed;
using support::Link;
using support::Packet;
using support::Peer;
using support::raised_by;
using namespace std::chrono_literals;
using namespace support::literals;

const std::string kCan = "18"_hex;
const std::string kEot = "04"_hex;
const std::string kNak = "15"_hex;

size_t open_files() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

TEST(Open, ClearsTheLineAndSendsCan) {
    Peer peer;
    peer.send("stale").wait(300ms).send("more").expect_silence(450ms).accept_can();
    AbecsComm* comm = nullptr;
    const Elapsed elapsed;
    EXPECT_NO_RAISE(comm = abecs_comm_open(peer.path().c_str()));
    ASSERT_NE(comm, nullptr);
    EXPECT_TRUE(elapsed.between(800ms, 3s));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(comm), "");
    EXPECT_EQ(abecs_comm_get_send_interval(comm), 0);
    EXPECT_FALSE(comm->keySet || comm->panProtected || comm->panKeyInstalled);
    EXPECT_LE(kor_system_current_time_millis() - comm->lastSend, 1000);
    peer.request("GIN00200");
    const Packet packet("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(comm, packet.get()));
    peer.finish();
    EXPECT_NO_RAISE(abecs_comm_close(&comm));
    EXPECT_EQ(comm, nullptr);
}

TEST(Open, SetsTheLineTo19200BaudAndEightPlainBits) {
    Peer peer;
    peer.accept_can();
    AbecsComm* comm = nullptr;
    EXPECT_NO_RAISE(comm = abecs_comm_open(peer.path().c_str()));
    const termios line = peer.settings();
    EXPECT_EQ(cfgetispeed(&line), speed_t{B19200});
    EXPECT_EQ(cfgetospeed(&line), speed_t{B19200});
    EXPECT_EQ(line.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), tcflag_t{CS8});
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), 0U);
    EXPECT_NO_RAISE(abecs_comm_close(&comm));
}

// Each failure leaves no handle and no descriptor, and its own error.
TEST(Open, ThatFailsLeavesNothingBehind) {
    Peer silent;
    Peer refusing;
    silent.expect(kCan).expect(kCan).expect(kCan);
    refusing.expect(kCan).send(kNak).expect(kCan).send(kNak).expect(kCan).send(kNak);
    const std::string nothing = "/dev/nothing-here";
    const struct {
        std::string path;
        support::Raised error;
    } rows[] = {
        {nothing, support::error(KOR_RESULT_FILE_NOT_FOUND, "No such port: " + nothing)},
        {"/dev/null", support::error(KOR_RESULT_IO_ERROR, "tcgetattr() error: 25")},
        {refusing.path(), support::error(KOR_RESULT_IO_ERROR, "Communication error while sending CAN")},
        {silent.path(), support::error(KOR_RESULT_IO_ERROR, "Communication error while sending CAN")},
    };
    for (const auto& row : rows) {
        const size_t before = open_files();
        AbecsComm* comm = nullptr;
        EXPECT_EQ(raised_by([&] { comm = abecs_comm_open(row.path.c_str()); }), row.error) << row.path;
        EXPECT_EQ(comm, nullptr);
        EXPECT_EQ(open_files(), before) << row.path;
    }
}

// Which call on the port meets the hang-up first is a matter of chance.
TEST(Open, OfALineThatHangsUpLeavesNothingBehind) {
    Peer peer;
    peer.expect(kCan).hang_up();
    const size_t before = open_files();
    AbecsComm* comm = nullptr;
    EXPECT_EQ(raised_by([&] { comm = abecs_comm_open(peer.path().c_str()); }).code, KOR_RESULT_IO_ERROR);
    EXPECT_EQ(comm, nullptr);
    EXPECT_EQ(open_files(), before - 1);  // less the peer's own, now closed
}

TEST(Open, ThatFailsOutsideATryBlockGivesNoHandle) {
    const support::ReturningRaises raises;
    EXPECT_EQ(abecs_comm_open("/dev/null"), nullptr);
    ASSERT_EQ(raises.all().size(), 1U);
    EXPECT_EQ(raises.all()[0], support::error(KOR_RESULT_IO_ERROR, "tcgetattr() error: 25"));
}

TEST(Close, IgnoresWhatIsNotOpen) {
    AbecsComm* none = nullptr;
    EXPECT_NO_RAISE(abecs_comm_close(nullptr));
    EXPECT_NO_RAISE(abecs_comm_close(&none));
}

TEST(Close, OfAHungUpLineReleasesEverything) {
    Link link;
    link.peer.hang_up().settle();
    const size_t before = open_files();
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcflush() error: 5", abecs_comm_close(&link.comm));
    EXPECT_EQ(link.comm, nullptr);
    EXPECT_EQ(open_files(), before - 1);
}

// Applications close in the clean-up of the block that failed; they want to know why it failed, not that the line did.
TEST(Close, WhileAnErrorIsPendingLeavesThatError) {
    for (const bool hungUp : {false, true}) {
        Link link;
        if (hungUp) { link.peer.hang_up().settle(); }
        const support::Raised raised = raised_by([&] {
            KOR_TRY { kor_exception_throw(KOR_RESULT_PROTOCOL_ERROR, "the first one"); }
            KOR_CLEANUP { abecs_comm_close(&link.comm); }
            KOR_END_TRY;
        });
        EXPECT_EQ(raised, (support::Raised{KOR_RESULT_PROTOCOL_ERROR, "the first one"}));
        EXPECT_EQ(link.comm, nullptr);
    }
}

TEST(Can, IsAllowedWhileBlockedAndReleasesTheLink) {
    Link link;
    link.call(abecs_comm_lock)("GCR");
    link.peer.accept_can();
    link.call(abecs_comm_send_can)();
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Can, IsSentAgainWhenItIsIgnored) {
    Link link;
    link.peer.expect(kCan).expect_silence(1900ms).accept_can();
    const Elapsed elapsed;
    link.call(abecs_comm_send_can)();
    EXPECT_TRUE(elapsed.between(2s, 5s));
}

// The EOT among the purged bytes must not count as an answer, and the next CAN has the full time to be answered.
TEST(Can, IsSentAgainAfterAPurgeWhenAnotherByteAnswers) {
    Link link;
    link.peer.expect(kCan).send(kNak).wait(300ms).send(kEot).expect_silence(450ms);
    link.peer.expect(kCan).wait(900ms).send(kEot);
    link.call(abecs_comm_send_can)();
}

TEST(Can, FailsAfterThreeAttemptsAndLeavesTheLinkBlocked) {
    Link link;
    link.call(abecs_comm_lock)("GCR");
    link.peer.expect(kCan).send(kNak).expect(kCan).send(kNak).expect(kCan).send(kNak);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Communication error while sending CAN", abecs_comm_send_can(link.comm));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

}  // namespace
