// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <thread>
#include <unistd.h>

#include "quorvel/abecs/line.h"
#include "quorvel/kor/system.h"
#include "tests/abecs/comm/line.h"

namespace {

using namespace support;

const Raised kLate = error(KOR_RESULT_TIMEOUT_ERROR, "The limit of 300 ms has passed");

class Limit : public testing::Test {
protected:
    void SetUp() override {
        EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 300));
        EXPECT_EQ(abecs_comm_get_limit(link.comm), 300);
    }

    Raised read() {
        return raised_by([this] { abecs_comm_read_packet(link.comm, answer); });
    }

    // Runs `act`, which the limit has to end.
    template <typename Act>
    void expect_late(Act&& act) {
        const Elapsed elapsed;
        EXPECT_EQ(raised_by(act), kLate);
        EXPECT_TRUE(elapsed.between(290ms, 1500ms));
    }

    void send() { abecs_comm_send_packet(link.comm, Packet("GIN00200")); }

    // As much as the port takes while nobody reads, in bytes.
    size_t fill() {
        size_t queued = 0;
        for (size_t more = 1; more != 0; queued += more) {
            more = 0;
            while (write(abecs_comm_get_fd(link.comm), "x", 1) == 1) { ++more; }
            std::this_thread::sleep_for(50ms);
        }
        return queued;
    }

    Link link;
    Packet answer;
};

TEST_F(Limit, EndsEachWait) {
    expect_late([this] { abecs_comm_read_packet(link.comm, answer); });
    link.peer.expect(kGin);
    expect_late([this] { send(); });
    link.peer.expect(kCan);
    expect_late([this] { abecs_comm_send_can(link.comm); });
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    expect_late([this] { abecs_comm_read_packet(link.comm, answer); });
    EXPECT_NO_RAISE(abecs_comm_release(link.comm));
    EXPECT_NO_RAISE(abecs_comm_set_send_interval(link.comm, 5000));
    link.comm->lastSend = kor_system_current_time_millis();
    expect_late([this] { send(); });
}

// Each of its bytes comes in time.
TEST_F(Limit, EndsALineThatIsNeverSilent) {
    for (int i = 0; i < 8; ++i) { link.peer.send("\x16").wait(100ms); }
    expect_late([this] { abecs_comm_read_packet(link.comm, answer); });
    expect_late([this] { abecs_comm_send_can(link.comm); });
    link.peer.expect(kCan);
}

TEST_F(Limit, EndsSendingThatNobodyTakes) {
    for (const bool whole : {false, true}) {
        EXPECT_NO_RAISE(abecs_comm_set_whole_frames(link.comm, whole));
        link.peer.wait(1500ms);
        const size_t queued = fill();
        expect_late([this] { send(); });
        link.peer.discard(queued).settle();
    }
}

// Where it ends an answer, the next call asks for that once more, and none after CAN.
TEST_F(Limit, LosesNoAnswer) {
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GIN"));
    link.peer.send(kGood.substr(0, 4));
    expect_late([this] { abecs_comm_read_packet(link.comm, answer); });
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 3000));
    link.peer.expect_silence(400ms).expect(kNak).send(kGood);
    EXPECT_EQ(read(), Raised{});
    EXPECT_EQ(answer.take(), "GIN000");
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 300));
    link.peer.send(kGood.substr(0, 4));
    expect_late([this] { abecs_comm_read_packet(link.comm, answer); });
    link.peer.accept_can();
    EXPECT_NO_RAISE(abecs_comm_send_can(link.comm));
    link.peer.send(kGood);
    EXPECT_EQ(read(), Raised{});
}

TEST_F(Limit, OfNothingIsNone) {
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 0));
    link.peer.wait(500ms).send(kGood);
    EXPECT_EQ(read(), Raised{});
    EXPECT_EQ(raised_by([this] { abecs_comm_set_limit(link.comm, -1); }),
              error(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid limit: -1"));
    EXPECT_EQ(abecs_comm_get_limit(link.comm), 0);
}

}  // namespace
