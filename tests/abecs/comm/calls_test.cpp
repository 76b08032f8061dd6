// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cerrno>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <vector>

#include "quorvel/abecs/line.h"
#include "tests/abecs/comm/line.h"

namespace {

// What the thread that asks for it calls of the system; the peer has a thread of its own.
struct Calls {
    size_t writes = 0;
    size_t reads = 0;
    size_t drains = 0;
    size_t settings = 0;
};
thread_local Calls* counted = nullptr;

void count_one(size_t Calls::*kind) {
    if (counted != nullptr) { ++(counted->*kind); }
}

// What a driver says and is told of the settings that a pseudo-terminal has not.
struct Driver {
    int flags = 0;
    bool refuses = false;
    std::vector<int> told{};
    int unsent = 0;
    int sends = 0;  // of them from one look to the next
    size_t room = SIZE_MAX;
    size_t most = SIZE_MAX;  // of a write
};
Driver* driver = nullptr;

}  // namespace

// This program is linked with -Wl,--wrap for each of these.
#define WRAPS(result, name, ...)       \
    result __real_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__); \
    result __wrap_##name(__VA_ARGS__)

extern "C" {

WRAPS(ssize_t, write, int fd, const void* bytes, size_t count) {
    count_one(&Calls::writes);
    if (counted == nullptr || driver == nullptr) { return __real_write(fd, bytes, count); }
    if (driver->room == 0) { return errno = EAGAIN, -1; }
    const size_t taken = std::min({count, driver->room, driver->most});
    driver->room -= taken;
    return __real_write(fd, bytes, taken);
}

WRAPS(ssize_t, read, int fd, void* bytes, size_t count) {
    count_one(&Calls::reads);
    return __real_read(fd, bytes, count);
}

WRAPS(int, tcdrain, int fd) {
    count_one(&Calls::drains);
    return __real_tcdrain(fd);
}

WRAPS(int, tcgetattr, int fd, termios* settings) {
    count_one(&Calls::settings);
    return __real_tcgetattr(fd, settings);
}

WRAPS(int, tcsetattr, int fd, int when, const termios* settings) {
    count_one(&Calls::settings);
    return __real_tcsetattr(fd, when, settings);
}

WRAPS(int, ioctl, int fd, unsigned long request, void* argument) {
    if (driver != nullptr && request == TIOCOUTQ) {
        *static_cast<int*>(argument) = driver->unsent;
        driver->unsent -= driver->sends;
        return 0;
    }
    if (driver == nullptr || (request != TIOCGSERIAL && request != TIOCSSERIAL)) {
        return __real_ioctl(fd, request, argument);
    }
    auto* settings = static_cast<serial_struct*>(argument);
    if (request == TIOCGSERIAL) { return settings->flags = driver->flags, 0; }
    if (driver->refuses) { return -1; }
    driver->told.push_back(driver->flags = settings->flags);
    return 0;
}
}

namespace {

using namespace support;

class SystemCalls : public testing::Test {
protected:
    // Of one exchange, whose answer the peer sends in one piece.
    Calls exchange(size_t answerSize) {
        const Packet packet(request);
        link.peer.response("GIN000" + std::string(answerSize, 'A'));
        Calls calls;
        counted = &calls;
        abecs_comm_send_packet(link.comm, packet);
        abecs_comm_read_packet(link.comm, packet);
        counted = nullptr;
        EXPECT_EQ(packet.take().size(), 6 + answerSize);
        return calls;
    }

    Link link;
    const std::string request = "TLR" + std::string(900, 'A');
    const size_t sent = 1 + request.size() + 3;  // SYN, ETB and the CRC
};

TEST_F(SystemCalls, AreOneWriteForAByteOneDrainForAFrameAndAReadForWhatHasCome) {
    link.peer.request(request);
    const Calls calls = exchange(950);
    EXPECT_EQ(calls.writes, sent);
    EXPECT_EQ(calls.drains, 1U);
    EXPECT_LE(calls.reads, 10U);
    EXPECT_EQ(calls.settings, 0U);
}

TEST_F(SystemCalls, AreOneWriteForAFrameIfTheCallerSaysSo) {
    EXPECT_NO_RAISE(abecs_comm_set_whole_frames(link.comm, true));
    EXPECT_TRUE(abecs_comm_get_whole_frames(link.comm));
    link.peer.discard(sent).send(kNak).request(request);
    const Calls calls = exchange(0);
    EXPECT_EQ(calls.writes, 1 + sent);
    EXPECT_EQ(calls.drains, 1 + sent + 1);
    Driver narrow{.most = 400};
    driver = &narrow;
    link.peer.request(request);
    EXPECT_EQ(exchange(0).writes, 3U);
    driver = nullptr;
    const std::string escaped = "GEN" + std::string(2041, '\x16');
    const Packet packet(escaped);
    link.peer.request(escaped);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
}

// A driver that holds bytes back is asked not to while the link is open.
TEST(LowLatency, IsAskedForAndPutBackAsItWas) {
    constexpr int kOther = ASYNC_SPD_HI;
    constexpr int kLow = static_cast<int>(ASYNC_LOW_LATENCY);
    const struct {
        Driver driver;
        std::vector<int> told;
    } rows[] = {{{.flags = kOther}, {kOther | kLow, kOther}},
                {{.flags = kOther | kLow}, {}},
                {{.flags = kOther, .refuses = true}, {}}};
    for (const auto& row : rows) {
        Driver played = row.driver;
        driver = &played;
        Peer peer;
        peer.accept_can();
        AbecsComm* comm = nullptr;
        EXPECT_NO_RAISE(comm = abecs_comm_open(peer.path().c_str()));
        EXPECT_NO_RAISE(abecs_comm_close(&comm));
        driver = nullptr;
        EXPECT_EQ(played.told, row.told);
    }
}

// A port that never gets rid of its bytes.
TEST_F(SystemCalls, OfADrainEndWithTheLimit) {
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 10'000));
    Driver slow{.unsent = 10, .sends = 1};
    driver = &slow;
    link.peer.request(request);
    EXPECT_EQ(exchange(0).drains, 1U);
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 300));
    Driver stuck{.unsent = 10};
    driver = &stuck;
    const Packet packet(request);
    link.peer.discard(sent);
    EXPECT_EQ(raised_by_sending(link, packet), error(KOR_RESULT_TIMEOUT_ERROR, "The limit of 300 ms has passed"));
    driver = nullptr;
}

// What has gone out in part is consumed.
TEST_F(SystemCalls, ThatWriteAPartOfAFrameConsumeItAndEndWithTheLimit) {
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 100));
    for (const auto& [whole, room] : {std::pair{true, size_t{0}}, {true, 5}, {false, 0}}) {
        abecs_comm_set_whole_frames(link.comm, whole);
        Driver full{.room = room};
        driver = &full;
        Calls calls;
        counted = &calls;
        const Packet packet(request);
        const Elapsed elapsed;
        const Raised raised = raised_by_sending(link, packet);
        counted = nullptr;
        driver = nullptr;
        EXPECT_EQ(raised, error(KOR_RESULT_TIMEOUT_ERROR, "The limit of 100 ms has passed"));
        EXPECT_TRUE(elapsed.between(95ms, 1900ms));
        EXPECT_EQ(packet.take().size(), room == 0 ? request.size() : 0);
        link.peer.discard(room);
    }
}

// A PIN pad that rejects a frame may have been outrun.
TEST_F(SystemCalls, AreADrainForEachByteThatIsSentAgain) {
    link.peer.discard(sent).send(kNak).request(request);
    const Calls calls = exchange(0);
    EXPECT_EQ(calls.writes, 2 * sent);
    EXPECT_EQ(calls.drains, 1 + sent + 1);
}

}  // namespace
