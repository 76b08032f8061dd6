// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fnmatch.h>
#include <stdexcept>

#include "simulator/exam/cases.h"

namespace quorvel::sim::exam {

namespace {

constexpr std::array kChapters{
    Chapter{1, "Sales in which nothing goes wrong"},
    Chapter{2, "Trouble on the line, step by step"},
    Chapter{3, "Commands that are refused"},
    Chapter{4, "The person at the PIN pad"},
    Chapter{5, "Cards"},
    Chapter{6, "The acquirer"},
    Chapter{7, "A till that is told to stop"},
    Chapter{8, "Tables"},
    Chapter{9, "The port"},
    Chapter{10, "Encrypted sessions"},
};

std::vector<Case> all_cases() {
    std::vector<Case> all;
    for (const auto add : {add_good_sales, add_line_troubles, add_refusals, add_people, add_cards, add_acquirers,
                           add_stops, add_tables, add_ports, add_encrypted}) {
        add(all);
    }
    return all;
}

bool is_meant(const Case& each, const std::string& pattern) {
    const std::string number = each.number.words();
    if (number == pattern || number.starts_with(pattern + ".")) { return true; }
    return ::fnmatch(pattern.c_str(), number.c_str(), 0) == 0
           || ::fnmatch(pattern.c_str(), each.title.c_str(), FNM_CASEFOLD) == 0;
}

}  // namespace

std::string Number::words() const { return fmt::format("{}.{}.{}", chapter, family, item); }

std::span<const Chapter> chapters() noexcept { return kChapters; }

const std::vector<Case>& catalogue() {
    static const std::vector<Case> kAll = all_cases();
    return kAll;
}

std::vector<const Case*> chosen(const std::vector<std::string>& patterns) {
    std::vector<const Case*> cases;
    for (const std::string& pattern : patterns) {
        const auto means = [&](const Case& each) { return is_meant(each, pattern); };
        if (std::ranges::none_of(catalogue(), means)) {
            throw std::runtime_error(fmt::format("there is no case \"{}\": --list names them", pattern));
        }
    }
    for (const Case& each : catalogue()) {
        const auto means = [&](const std::string& pattern) { return is_meant(each, pattern); };
        if (patterns.empty() || std::ranges::any_of(patterns, means)) { cases.push_back(&each); }
    }
    return cases;
}

}  // namespace quorvel::sim::exam
