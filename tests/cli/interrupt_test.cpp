// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <csignal>
#include <thread>

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
        EXPECT_TRUE(elapsed.between({}, std::chrono::milliseconds(1500)));
        EXPECT_EQ(ended.exit, exit);
        EXPECT_NE(ended.err.find("quorvel: Interrupted."), std::string::npos) << ended.err;
        const auto all = sent();
        const std::vector<std::string> ids(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
        EXPECT_EQ(ids, (std::vector<std::string>{"CAN", "OPN", waitsFor, "CAN", "CLO"}));
    }
}

}  // namespace
