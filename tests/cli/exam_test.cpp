// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstdlib>
#include <filesystem>

#include "tests/cli/tool.h"

namespace {

// Some of the cases, by every kind of card and in sessions of both kinds; scripts/exam runs them all.
TEST(Exam, FindsNoFaultInTheSale) {
    const auto folder = std::filesystem::path(QUORVEL_CLI).parent_path().string();
    std::vector<std::string> command{QUORVEL_SIM, "exam", "--till", QUORVEL_TILL, "--jobs", "12"};
    for (const char* number : {"1.1.4", "1.2.3", "1.3.1", "1.4.14", "2.2.6", "2.7.12", "2.8.12", "3.7.4", "4.1.4",
                               "4.2.3", "5.1.2", "6.1.3", "6.4.1", "7.1.4", "8.1.4", "9.1.4", "10.1.4"}) {
        command.insert(command.end(), {"--case", number});
    }
    support::Child exam(command, std::vector<std::string>{"PATH=" + folder + ":" + std::getenv("PATH")});
    EXPECT_EQ(exam.wait(), 0) << exam.errors();
    EXPECT_EQ(exam.output(), "17 cases: 17 passed, 0 not applicable; failed: 0 money, 0 state, 0 conduct; 0 broken\n");
}

}  // namespace
