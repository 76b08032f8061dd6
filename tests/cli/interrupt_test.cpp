// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <csignal>
#include <pty.h>
#include <random>
#include <thread>
#include <unistd.h>

#include "tests/cli/tool.h"
#include "tests/support/elapsed.h"

namespace {

class InterruptTest : public PinPadToolTest {
protected:
    void await_command(const std::string& id) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (;;) {
            const auto ids = sent();
            if (std::ranges::find(ids, id) != ids.end()) { return; }
            ASSERT_LT(std::chrono::steady_clock::now(), deadline) << id;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
};

// At once: a poll would go on for two seconds.
TEST_F(InterruptTest, LeavesThePinPadIdle) {
    for (const auto& [command, waitsFor, signal, exit] :
         {std::tuple("card", "GCX", SIGINT, 130), {"key", "GKY", SIGTERM, 143}}) {
        const size_t before = sent().size();
        Tool tool(with_port({command}), folder_ / "");
        await_command(waitsFor);
        // Twice, as whoever signals a process and its group does.
        for (int i = 0; i < 2; ++i) { tool.signal(signal); }
        const support::Elapsed elapsed;
        const Ended ended = tool.wait();
        EXPECT_TRUE(elapsed.between({}, std::chrono::milliseconds(1900)));
        EXPECT_EQ(ended.exit, exit);
        EXPECT_NE(ended.err.find("quorvel: Interrupted."), std::string::npos) << ended.err;
        const auto all = sent();
        const std::vector<std::string> ids(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
        EXPECT_EQ(ids, (std::vector<std::string>{"CAN", "OPN", "GTS", waitsFor, "CAN", "CLO"}));
    }
}

// Whatever the tool is at, and whichever signal it is: the PIN pad's session is closed again, and nothing odd was sent.
TEST_F(InterruptTest, EndsAtAnyMoment) {
    std::minstd_rand random(7);
    const std::pair<int, int> signals[]{{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
    int interrupted = 0;
    // Later and later, where the program takes long to begin.
    for (int i = 0; i < 24 || (interrupted <= 6 && i < 120); ++i) {
        const Arguments commands[]{{"info"}, {"display", "HI"}, {"keys"}, {"sale", "--amount", "1", "--secure"}};
        const auto& [signal, exit] = signals[i % 3];
        Tool tool(with_port(commands[i % 4]), folder_ / "");
        std::this_thread::sleep_for(std::chrono::milliseconds(10 + random() % static_cast<unsigned>(150 + 10 * i)));
        tool.signal(signal);
        const support::Elapsed elapsed;
        const Ended ended = tool.wait();
        EXPECT_TRUE(elapsed.between({}, std::chrono::milliseconds(1900)));
        // A signal that comes before the program has begun ends it by itself.
        EXPECT_TRUE(ended.exit == exit || ended.exit == 0 || (ended.exit == -1 && ended.err.empty())) << ended.exit;
        if (ended.exit == exit) { ++interrupted; }
        const auto ids = sent();
        EXPECT_TRUE(ids.empty() || ids.back() == "CLO" || ids.back() == "CAN") << ids.back();
        EXPECT_EQ(pinPad_.board().state(), sim::State());
    }
    EXPECT_GT(interrupted, 6);
}

// Neither a PIN pad that owes an answer nor one that is not there keeps the user waiting.
TEST_F(InterruptTest, DoesNotWaitForAPinPadThatDoesNotAnswer) {
    pinPad_.inject({.kind = "no-answer", .command = "GIX"});
    Tool tool(with_port({"info", "--json"}), folder_ / "");
    await_command("GIX");
    tool.signal(SIGINT);
    const support::Elapsed elapsed;
    EXPECT_EQ(tool.wait().exit, 130);
    EXPECT_TRUE(elapsed.between({}, std::chrono::milliseconds(3500)));
    EXPECT_EQ(sent().back(), "CLO");
    std::array<char, 64> name{};
    int master = -1;
    int slave = -1;
    ASSERT_EQ(openpty(&master, &slave, name.data(), nullptr, nullptr), 0);
    Tool opening({"info", "--json", "--port", name.data()}, folder_ / "");
    char can = 0;
    EXPECT_EQ(read(master, &can, 1), 1);
    opening.signal(SIGTERM);
    const Ended ended = opening.wait();
    EXPECT_EQ(ended.exit, 143);
    EXPECT_EQ(Json::parse(ended.out)["exit"], 143);
    for (const int end : {master, slave}) { close(end); }
}

// The acquirer has said yes when the signal comes.
TEST_F(InterruptTest, TellsWhatHasBecomeOfTheMoney) {
    pinPad_.inject({.kind = "delay", .command = "FCX", .time = std::chrono::seconds(9)});
    EXPECT_EQ(run({"tables", "load", QUORVEL_TABLES}).exit, 0);
    pinPad_.when("GCX", Gestures().insert(card("visa-signature")));
    Tool tool(with_port({"sale", "--amount", "1", "--json"}), folder_ / "");
    await_command("FCX");
    tool.signal(SIGINT);
    const Ended ended = tool.wait();
    // The card is not forgotten, though nobody takes it.
    EXPECT_EQ(sent().at(sent().size() - 3), "RMC");
    EXPECT_EQ(pinPad_.screen().text, "REMOVE THE CARD");
    EXPECT_EQ(ended.exit, 6) << ended.err;
    const Json result = Json::parse(ended.out)["result"];
    EXPECT_EQ(result["outcome"], "unknown");
    EXPECT_EQ(result["reverse"], true);
}

// A PIN pad that was left in an encrypted session takes no plain command until that is ended.
TEST_F(InterruptTest, GetsOutOfASessionThatWasCutOff) {
    Tool tool(with_port({"key", "--secure"}), folder_ / "");
    while (pinPad_.board().waits("GKY") == 0) { std::this_thread::sleep_for(std::chrono::milliseconds(5)); }
    tool.signal(SIGKILL);
    tool.wait();
    const Ended ended = run({"info"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_NE(ended.err.find("still in an encrypted session"), std::string::npos) << ended.err;
    // After what a till that was killed leaves behind.
    ASSERT_EQ(pinPad_.findings().size(), 3U);
    EXPECT_EQ(pinPad_.findings().back().text, "a plain command inside an encrypted session");
    pinPad_.clear_findings();
}

}  // namespace
