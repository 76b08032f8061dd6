// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/outcome.h"

#include <array>
#include <utility>

namespace quorvel::sim::exam {

namespace {

constexpr std::array<std::pair<Outcome, const char*>, 4> kWords{{{Outcome::kPaid, "paid"},
                                                                 {Outcome::kNotPaid, "not paid"},
                                                                 {Outcome::kReversal, "not paid with a reversal owed"},
                                                                 {Outcome::kUnknown, "unknown"}}};

}  // namespace

std::string words_for(Outcome outcome) { return words_for(Outcomes{outcome}); }

std::string words_for(Outcomes outcomes) {
    std::string words;
    for (const auto& [outcome, name] : kWords) {
        if (outcomes.has(outcome)) { words += (words.empty() ? "" : ", or ") + std::string(name); }
    }
    return words;
}

}  // namespace quorvel::sim::exam
