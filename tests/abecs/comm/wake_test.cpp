// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <atomic>
#include <csignal>
#include <random>
#include <sys/time.h>
#include <thread>

#include "quorvel/abecs/line.h"
#include "tests/abecs/comm/line.h"
#include "tests/core/signals.h"

namespace {

using namespace support;

const Raised kEnded = error(KOR_RESULT_TIMEOUT_ERROR, "The wait was ended");

class Wake : public OnLink {
protected:
    void SetUp() override { EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GCR")); }
};

AbecsComm* signalled = nullptr;

TEST_F(Wake, EndsTheWaitInProgressOrElseTheNextOnceAndComesFromASignalHandlerToo) {
    const Elapsed elapsed;
    abecs_comm_wake(nullptr);
    abecs_comm_wake(link.comm);
    abecs_comm_wake(link.comm);
    EXPECT_EQ(read(), kEnded);
    signalled = link.comm;
    struct sigaction wakes {};
    wakes.sa_handler = [](int) { abecs_comm_wake(signalled); };
    wakes.sa_flags = SA_RESTART;
    struct sigaction before {};
    sigaction(SIGALRM, &wakes, &before);
    const itimerval in100ms{{}, {0, 100'000}};
    setitimer(ITIMER_REAL, &in100ms, nullptr);
    EXPECT_EQ(read(), kEnded);
    EXPECT_TRUE(elapsed.between(95ms, 1900ms));
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(read(), kTimeout);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

// An answer that is there goes first and uses the wake up; one that has begun is read to its end. A command that does
// not wait for anybody is not ended.
TEST_F(Wake, LosesToAnAnswer) {
    link.peer.send(kGood).settle();
    abecs_comm_wake(link.comm);
    EXPECT_EQ(receive(), "GIN000");
    link.peer.send(kGood + kGood).settle();
    EXPECT_EQ(read(), Raised{});
    abecs_comm_wake(link.comm);
    EXPECT_EQ(receive(), "GIN000");
    EXPECT_EQ(read(), kTimeout) << "an answer that was read ahead uses the wake up, too";
    link.peer.send(kGood.substr(0, 3)).settle();
    link.peer.wait(300ms).send(kGood.substr(3));
    std::thread other([this] {
        std::this_thread::sleep_for(100ms);
        abecs_comm_wake(link.comm);
    });
    EXPECT_EQ(receive(), "GIN000");
    other.join();
    EXPECT_NO_RAISE(abecs_comm_release(link.comm));
    link.peer.wait(200ms).send(kGood);
    EXPECT_EQ(read(), Raised{});
}

// However the wakes fall among the bytes of the answers, each answer comes once, whole and in its turn.
TEST_F(Wake, NeitherLosesNorMixesUpAnAnswer) {
    constexpr int kAnswers = 10'000;
    std::atomic<bool> over = false;
    std::thread other([&] {
        std::minstd_rand random(1);
        while (!over) {
            abecs_comm_wake(link.comm);
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 200));
        }
    });
    int ended = 0;
    for (int i = 0; i < kAnswers; ++i) {
        const std::string answer = "GCR000" + std::to_string(i);
        const std::string bytes = frame(answer);
        const size_t cut = static_cast<size_t>(i) % bytes.size();
        link.peer.send(bytes.substr(0, cut)).send(bytes.substr(cut));
        Raised raised = read();
        for (; raised == kEnded; raised = read()) { ++ended; }
        EXPECT_EQ(raised, Raised{});
        EXPECT_EQ(packet.take(), answer);
        if (HasFailure()) { break; }
    }
    over = true;
    other.join();
    EXPECT_GT(ended, kAnswers / 100);
}

}  // namespace
