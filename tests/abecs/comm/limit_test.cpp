// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/line.h"
#include "quorvel/kor/system.h"
#include "tests/abecs/comm/line.h"

namespace {

using namespace support;

const Raised kLate = error(KOR_RESULT_TIMEOUT_ERROR, "The limit of 300 ms has passed");

class Limit : public OnLink {
protected:
    void SetUp() override {
        EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 300));
        EXPECT_EQ(abecs_comm_get_limit(link.comm), 300);
    }

    // Runs `act`, which the limit has to end.
    template <typename Act>
    void expect_late(Act&& act) {
        const Elapsed elapsed;
        EXPECT_EQ(raised_by(act), kLate);
        EXPECT_TRUE(elapsed.between(290ms, 1900ms));
    }

    void send() {
        request.fill("GIN00200");
        abecs_comm_send_packet(link.comm, request);
    }

    // How often the limit ends the call until it succeeds.
    template <typename Act>
    int count_ends(Act&& act) {
        int ends = 0;
        Raised raised = raised_by(act);
        for (; raised == kLate && ends < 50; raised = raised_by(act)) { ++ends; }
        EXPECT_EQ(raised, Raised{});
        return ends;
    }

    Packet request;
};

TEST_F(Limit, EndsEachWait) {
    expect_late([this] { abecs_comm_read_packet(link.comm, packet); });
    link.peer.expect(kGin);
    expect_late([this] { send(); });
    link.peer.expect(kCan);
    expect_late([this] { abecs_comm_send_can(link.comm); });
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR"));
    expect_late([this] { abecs_comm_read_packet(link.comm, packet); });
    EXPECT_NO_RAISE(abecs_comm_release(link.comm));
    EXPECT_NO_RAISE(abecs_comm_set_send_interval(link.comm, 5000));
    link.comm->lastSend = kor_system_current_time_millis();
    expect_late([this] { send(); });
}

// Each of its bytes comes in time.
TEST_F(Limit, EndsALineThatIsNeverSilent) {
    for (int i = 0; i < 30; ++i) { link.peer.send("\x16").wait(100ms); }
    expect_late([this] { abecs_comm_send_can(link.comm); });
    expect_late([this] { abecs_comm_read_packet(link.comm, packet); });
    expect_late([this] { abecs_comm_send_can(link.comm); });
    link.peer.expect(kCan);
}

// An answer that takes longer, that comes damaged, or of which the end is missing.
TEST_F(Limit, LosesNoAnswer) {
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GIN"));
    auto readAll = [&] { abecs_comm_read_packet(link.comm, packet); };
    for (const char byte : kGood) { link.peer.send(std::string(1, byte)).wait(250ms); }
    EXPECT_GE(count_ends(readAll), 2);
    EXPECT_EQ(packet.take(), "GIN000");
    link.peer.send(kBad).expect_silence(200ms).expect(kNak).send(kGood);
    EXPECT_GE(count_ends(readAll), 1);
    EXPECT_EQ(packet.take(), "GIN000");
    link.peer.send(kGood.substr(0, 4)).expect_silence(2s).expect(kNak).send(kGood);
    EXPECT_GE(count_ends(readAll), 7);
    EXPECT_EQ(packet.take(), "GIN000");
    EXPECT_EQ(link.comm->reception.data, decltype(link.comm->reception.data){}) << "nothing that was put away stays";
}

// What is left of an answer may look like the confirmation.
TEST_F(Limit, LeavesNothingInTheWayOfCan) {
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GIN"));
    EXPECT_FALSE(abecs_comm_has_input(link.comm));
    link.peer.send(kGood.substr(0, 4)).wait(350ms).send(kEot);
    expect_late([this] { abecs_comm_read_packet(link.comm, packet); });
    EXPECT_TRUE(abecs_comm_has_input(link.comm)) << "the descriptor does not tell";
    link.peer.settle();
    link.peer.accept_can();
    EXPECT_GE(count_ends([this] { abecs_comm_send_can(link.comm); }), 1);
    EXPECT_FALSE(abecs_comm_has_input(link.comm));
    link.peer.expect(kCan).wait(400ms).send(kEot);
    expect_late([this] { abecs_comm_send_can(link.comm); });
    link.peer.settle();
    link.peer.accept_can().send(kGood);
    EXPECT_GE(count_ends([this] { abecs_comm_send_can(link.comm); }), 1);
    EXPECT_EQ(receive(), "GIN000");
}

TEST_F(Limit, OfNothingIsNone) {
    link.peer.send(kGood);
    EXPECT_EQ(read(), Raised{});
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 0));
    link.peer.wait(500ms).send(kGood);
    EXPECT_EQ(read(), Raised{});
    EXPECT_EQ(raised_by([this] { abecs_comm_set_limit(link.comm, -1); }),
              error(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid limit: -1"));
    EXPECT_EQ(abecs_comm_get_limit(link.comm), 0);
}

}  // namespace
