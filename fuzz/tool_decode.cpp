// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "cli/command.h"
#include "fuzz/harness.h"

using namespace quorvel::cli;

// The first byte tells the options, the rest is the capture on standard input.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) { return 0; }
    // What is printed is made, but is no use to anybody.
    static std::FILE* const kNowhere = std::freopen("/dev/null", "w", stdout);
    quorvel::fuzz::require(kNowhere != nullptr, "standard output goes nowhere");
    constexpr std::array kFrom{"", "--from host", "--from pinpad"};
    CLI::App app;
    CommandLine line(app);
    const Run run = setup::decode(line);
    app.parse(kFrom[data[0] % kFrom.size()]);
    std::istringstream in(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    std::streambuf* const before = std::cin.rdbuf(in.rdbuf());
    const Settings settings;
    Output output({.json = (data[0] & 0x40) != 0, .reveal = (data[0] & 0x80) != 0, .command = "decode"});
    Context context{settings, output, app};
    try {
        output.result(run(context).report, Exit::kOk);
    } catch (const Error& error) { quorvel::fuzz::require(error.exit() == Exit::kUsage, "only the input is wrong"); }
    std::cin.rdbuf(before);
    std::cin.clear();
    return 0;
}
