// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_OUTCOME_H
#define QUORVEL_SIMULATOR_EXAM_OUTCOME_H

#include <initializer_list>
#include <string>

namespace quorvel::sim::exam {

// How a till says that a sale has ended.
enum class Outcome : unsigned {
    kPaid = 1,
    kNotPaid = 2,
    kReversal = 4,  // not paid, and the acquirer must be told so
    kUnknown = 8,
};

// Those that are right at the end of a case.
class Outcomes {
public:
    constexpr Outcomes(std::initializer_list<Outcome> all) {
        for (const Outcome each : all) { bits_ |= static_cast<unsigned>(each); }
    }
    [[nodiscard]] static constexpr Outcomes any() {
        return {Outcome::kPaid, Outcome::kNotPaid, Outcome::kReversal, Outcome::kUnknown};
    }

    [[nodiscard]] constexpr bool has(Outcome outcome) const { return (bits_ & static_cast<unsigned>(outcome)) != 0; }
    [[nodiscard]] constexpr Outcomes with(Outcomes others) const { return Outcomes(bits_ | others.bits_); }
    [[nodiscard]] constexpr Outcomes in_common_with(Outcomes others) const { return Outcomes(bits_ & others.bits_); }
    [[nodiscard]] constexpr bool empty() const { return bits_ == 0; }
    constexpr bool operator==(const Outcomes&) const = default;

private:
    constexpr explicit Outcomes(unsigned bits) : bits_(bits) {}

    unsigned bits_ = 0;
};

[[nodiscard]] std::string words_for(Outcome outcome);
// "unknown, or not paid with a reversal owed".
[[nodiscard]] std::string words_for(Outcomes outcomes);

}  // namespace quorvel::sim::exam

#endif
