// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_PROGRESS_H
#define QUORVEL_SIMULATOR_SCENARIO_PROGRESS_H

#include <cstdint>
#include <string>
#include <vector>

namespace quorvel::sim {

// How far a scenario is.
struct Progress {
    enum class Mark { kDue, kNow, kDone, kFailed };

    // A step of the script, or an expectation.
    struct Line {
        uint32_t line = 0;
        std::string words;
        // Without values that may be private.
        std::string openWords;
        Mark mark = Mark::kDue;

        bool operator==(const Line&) const = default;
    };

    std::vector<Line> steps;
    std::vector<Line> expectations;
    // What is wrong already, whatever is still to come, with the values that are.
    std::vector<std::string> complaints;
};

}  // namespace quorvel::sim

#endif
