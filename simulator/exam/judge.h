// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_JUDGE_H
#define QUORVEL_SIMULATOR_EXAM_JUDGE_H

#include <optional>
#include <string>
#include <vector>

#include "simulator/exam/examiner.h"
#include "simulator/exam/performer.h"
#include "simulator/watch/finding.h"
#include "simulator/watch/state_board.h"

namespace quorvel::sim::exam {

// All that is known once the till has ended, or was ended.
struct Evidence {
    const Case& asked;
    const Till& till;
    uint64_t cents = 0;
    Host host = Host::kApproves;
    Outcomes goal = Outcomes::any();
    std::optional<Ended> ended = {};
    // Something of the till's goes on running.
    bool leftBehind = false;
    Performer::Sale sale = {};
    State board = {};
    std::vector<Finding> findings = {};
};

struct Judgement {
    Verdict verdict = Verdict::kPassed;
    std::vector<std::string> why = {};
    std::string expected = {};
    std::string said = {};
    std::string truth = {};
};

[[nodiscard]] Judgement judge(const Evidence& evidence);

}  // namespace quorvel::sim::exam

#endif
