// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fstream>

#include "simulator/scenario/performance.h"
#include "tests/cli/tool.h"

namespace {

using namespace quorvel::sim;

struct Case {
    std::string name;
    int exit;
    const char* host = "approves";
    std::string amount = "12.34";
};

const std::vector<Case> kCases{
    {"magnetic", 0},         {"chip-online-pin", 0},
    {"chip-offline-pin", 0}, {"contactless", 0},
    {"user-cancel", 1},      {"time-out", 1},
    {"card-removed", 1},     {"pin-blocked", 5},
    {"tables-differ", 0},    {"acquirer-unreachable", 5, "unreachable"},
};

class ScenariosTest : public ToolTest {
protected:
    // What the scenario has to say of a sale by the tool.
    std::string sell(const Case& scenario) const {
        Performance performance(Scenario::find(scenario.name));
        PinPad pinPad(performance.prepare({}));
        pinPad.start();
        const Ended ended = run({"--port", pinPad.path(), "sale", "--amount", scenario.amount, "--tables",
                                 QUORVEL_TABLES, "--host", scenario.host});
        EXPECT_EQ(ended.exit, scenario.exit) << scenario.name << ended.err;
        pinPad.stop();
        std::string said;
        for (const std::string& complaint : performance.complaints(pinPad.findings())) { said += complaint + "\n"; }
        return said;
    }
};

TEST_F(ScenariosTest, HoldForATill) {
    EXPECT_EQ(kCases.size(), shipped_scenarios().size());
    for (const Case& each : kCases) { EXPECT_EQ(sell(each), "") << each.name; }
}

// The one that the guide writes.
TEST_F(ScenariosTest, HoldForATillAsInTheGuide) {
    std::ifstream guide(QUORVEL_GUIDE);
    const std::string text{std::istreambuf_iterator<char>(guide), {}};
    const size_t begin = text.find("```toml\ntitle = ") + 8;
    ASSERT_GT(text.size(), begin);
    const std::string scenario = text.substr(begin, text.find("```", begin) - begin);
    EXPECT_EQ(sell({folder_.file("cancel.toml", scenario), 1, "approves", "10"}), "");
}

TEST_F(ScenariosTest, FailForATillThatDoesOtherwise) {
    EXPECT_EQ(sell({"acquirer-unreachable", 0}),
              "acquirer-unreachable.toml:30: expected never: FCX with SPE_ARC; it came once\n");
}

// Wherever a command of parameters is meant, the one of fields is, too.
TEST(Scenarios, AreForTillsWithCommandsOfFieldsToo) {
    const auto both = [](const CommandIds& ids) {
        const auto meant = [&](const char* id) { return std::ranges::count(ids, id) != 0; };
        return meant("GCR") == meant("GCX") && meant("GOC") == meant("GOX");
    };
    for (const Case& each : kCases) {
        const Scenario scenario = Scenario::find(each.name);
        for (const Expectation& expected : scenario.expectations) { EXPECT_TRUE(both(expected.commands)) << each.name; }
        for (const Step& step : scenario.script) {
            const auto* wait = std::get_if<Step::Wait>(&step.what);
            EXPECT_TRUE(wait == nullptr || both(wait->commands)) << each.name;
        }
    }
}

}  // namespace
