// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/line.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tests/abecs/comm/line.h"
#include "tests/core/temp_dir.h"

namespace {

using namespace support;

class Line : public OnLink {
protected:
    [[nodiscard]] bool readable(std::chrono::milliseconds time) {
        pollfd descriptor{abecs_comm_get_fd(link.comm), POLLIN, 0};
        return ::poll(&descriptor, 1, static_cast<int>(time.count())) == 1;
    }
};

using EventLoop = Line;

TEST_F(EventLoop, IsToldOfWhatTheLinkHasReadAhead) {
    EXPECT_FALSE(readable(0ms));
    link.peer.send(kGood + kGood);
    EXPECT_TRUE(readable(2s));
    link.peer.settle();
    EXPECT_FALSE(abecs_comm_has_input(link.comm));
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_TRUE(abecs_comm_has_input(link.comm) || readable(0ms));
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_FALSE(abecs_comm_has_input(link.comm) || readable(0ms));
    EXPECT_EQ(link.comm->line.ahead, decltype(link.comm->line.ahead){});
}

TEST_F(EventLoop, LooksAndReturns) {
    EXPECT_EQ(abecs_comm_get_poll_time(link.comm), 2000);
    EXPECT_NO_RAISE(abecs_comm_set_poll_time(link.comm, 0));
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    const Elapsed elapsed;
    for (int i = 0; i < 100; ++i) { EXPECT_EQ(read(), kTimeout); }
    EXPECT_TRUE(elapsed.between(0s, 1900ms));
    // What has begun is read to its end.
    link.peer.send(kGood.substr(0, 1)).wait(300ms).send(kGood.substr(1));
    EXPECT_TRUE(readable(2s));
    EXPECT_EQ(receive(), "GIN000");
    // So is what the PIN pad is asked for again.
    link.peer.send(kBad).expect(kNak).wait(300ms).send(kGood);
    EXPECT_TRUE(readable(2s));
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid poll time: -1", abecs_comm_set_poll_time(link.comm, -1));
    EXPECT_EQ(abecs_comm_get_poll_time(link.comm), 0);
}

// The bytes of a packet may go round the end of its memory.
TEST_F(Line, SendsAPacketThatWasReadBeforeItWasFilled) {
    packet.fill(std::string(2000, '-'));
    EXPECT_EQ(packet.take().size(), 2000U);
    const std::string payload = "GIN" + std::string(100, '5');
    abecs_packet_write_field_b(packet, payload.data(), payload.size());
    link.peer.request(payload);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
    EXPECT_EQ(packet.take(), "");
}

// TIOCEXCL keeps out all but root. A copy of the descriptor, as a child process has one, does not keep the claim.
TEST(Claim, TakesThePortForOneLinkUntilItIsClosed) {
    Peer peer;
    const int other = dup(STDIN_FILENO);  // and then the port, as in a child process that outlives its link
    for (int i = 0; i < 2; ++i) {
        AbecsComm* mine = nullptr;
        peer.accept_can();
        EXPECT_NO_RAISE(mine = abecs_comm_claim(peer.path().c_str()));
        ASSERT_NE(mine, nullptr);
        peer.send("unread").settle();
        const size_t open = open_descriptors();
        AbecsComm* second = nullptr;
        EXPECT_EQ(raised_by([&] { second = abecs_comm_claim(peer.path().c_str()); }),
                  error(KOR_RESULT_DEVICE_BUSY, "Port is busy: " + peer.path()));
        EXPECT_EQ(second, nullptr);
        EXPECT_EQ(open_descriptors(), open);
        peer.expect_silence(100ms).settle();
        int unread = 0;
        EXPECT_EQ(ioctl(abecs_comm_get_fd(mine), FIONREAD, &unread), 0);
        EXPECT_EQ(unread, 6);
        int exclusive = 0;
        EXPECT_EQ(ioctl(abecs_comm_get_fd(mine), TIOCGEXCL, &exclusive), 0);
        EXPECT_EQ(exclusive, 1);
        dup2(abecs_comm_get_fd(mine), other);
        EXPECT_NO_RAISE(abecs_comm_close(&mine));
        EXPECT_EQ(ioctl(other, TIOCGEXCL, &exclusive), 0);
        EXPECT_EQ(exclusive, 0);
    }
    close(other);
}

}  // namespace
