// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_EXAMINER_H
#define QUORVEL_SIMULATOR_EXAM_EXAMINER_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/exam/exam_case.h"
#include "simulator/exam/till.h"

namespace quorvel::sim::exam {

enum class Verdict {
    kPassed,
    kMoney,          // what the till says about the money is not so
    kState,          // it does not end, or leaves the PIN pad as nobody can use it
    kConduct,        // it does what a PIN pad complains about, or not what the case is about
    kNotApplicable,  // the till has no such thing
    kBroken,         // it says nothing that is known
};

[[nodiscard]] std::string_view name_of(Verdict verdict) noexcept;

struct Result {
    const Case* asked = nullptr;
    Verdict verdict = Verdict::kPassed;
    // All that was wrong, the worst first.
    std::vector<std::string> why = {};
    // What was right to say, what the till has said, and what the PIN pad knows of the sale.
    std::string expected = {};
    std::string said = {};
    std::string truth = {};
    std::vector<std::string> traffic = {};
    std::string output = {};
    std::chrono::milliseconds time{0};

    [[nodiscard]] bool is_good() const { return verdict == Verdict::kPassed || verdict == Verdict::kNotApplicable; }
};

// Why the case is not for the till; empty when it is.
[[nodiscard]] std::string unfit(const Case& asked, const Till& till);

// Has the till sell on a virtual PIN pad of its own. Throws std::system_error when there is none to be had, or no such
// till.
[[nodiscard]] Result examine(const Case& asked, const Till& till);

// All of them, so many at a time, long ones first; in the order in which they were given. `told` is called for each
// that has ended, one at a time.
[[nodiscard]] std::vector<Result> examine(const std::vector<const Case*>& all, const Till& till, unsigned jobs,
                                          const std::function<void(const Result&)>& told);

}  // namespace quorvel::sim::exam

#endif
