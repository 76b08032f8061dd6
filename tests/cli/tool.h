// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CLI_TOOL_H
#define QUORVEL_TESTS_CLI_TOOL_H

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "tests/core/temp_dir.h"
#include "tests/support/child.h"

namespace sim = quorvel::sim;
using sim::Gestures;
using sim::Key;

// What a run of quorvel came to.
struct Ended {
    int exit = -1;
    std::string out;
    std::string err;
};

// quorvel, run as a user does, in an environment of its own.
class Tool : public support::Child {
public:
    // A `home` that has no configuration leaves none.
    Tool(std::vector<std::string> arguments, const std::string& home, std::vector<std::string> environment = {});

    Ended wait();
};

// A folder of its own, and no PIN pad.
class ToolTest : public testing::Test {
protected:
    using Arguments = std::vector<std::string>;
    using Json = nlohmann::json;

    Ended run(Arguments arguments, std::vector<std::string> environment = {}) const;
    // The same with --json.
    Json run_json(Arguments arguments) const;
    // With its streams as the shell makes them of this: ">/dev/full".
    Ended redirected(const std::string& streams, Arguments arguments) const;

    TempDir folder_;
};

// Runs against a virtual PIN pad.
class PinPadToolTest : public ToolTest {
protected:
    PinPadToolTest() : PinPadToolTest(sim::PinPad::Options{}) {}
    explicit PinPadToolTest(sim::PinPad::Options options) : pinPad_(std::move(options)) { pinPad_.start(); }

    static const sim::Card& card(const char* name) { return sim::Cards::standard().at(name); }

    // With the port named.
    Arguments with_port(Arguments arguments) const;
    Ended run(Arguments arguments) const { return ToolTest::run(with_port(std::move(arguments))); }
    Json run_json(Arguments arguments) const { return ToolTest::run_json(with_port(std::move(arguments))); }
    Ended redirected(const std::string& streams, Arguments arguments) const {
        return ToolTest::redirected(streams, with_port(std::move(arguments)));
    }

    // The ids of the commands that the PIN pad was sent, and CAN.
    std::vector<std::string> sent();
    // Nothing that was sent was out of order.
    void TearDown() override;

    sim::PinPad pinPad_;
};

#endif
