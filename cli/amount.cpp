// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/amount.h"

#include <algorithm>
#include <fmt/format.h>

#include "cli/error.h"

namespace quorvel::cli {

uint64_t parse_amount(const std::string& text) {
    constexpr size_t kDecimals = 2;
    constexpr size_t kMost = 12;
    const size_t point = text.find('.');
    const std::string whole = text.substr(0, point);
    const std::string fraction = point == std::string::npos ? "00" : text.substr(point + 1);
    const std::string digits = whole + fraction;
    const bool numeric = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
    if (!numeric || whole.empty() || fraction.size() != kDecimals || digits.size() > kMost) {
        throw Error(Exit::kUsage, fmt::format("'{}' is no amount.", text), "Write it like 12.34 or 12.");
    }
    return std::stoull(digits);
}

std::string amount_words(uint64_t hundredths) { return fmt::format("{}.{:02}", hundredths / 100, hundredths % 100); }

}  // namespace quorvel::cli
