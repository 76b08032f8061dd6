// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/scenario/judge.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "wire/status.h"
#include "wire/words.h"

namespace quorvel::sim {

namespace {

constexpr size_t kMostSince = 10;

bool is_among(const std::string& id, const CommandIds& ids) { return std::ranges::find(ids, id) != ids.end(); }

std::string status_words(std::optional<int> status) {
    return status ? fmt::format("{:03} {}", *status, status_name(*status)) : "nothing";
}

// What came under the name. The scenario's author asked for it by name, so it is shown even where traces do not.
std::string counterpart(const std::vector<Item>& items, const ExpectedValue& expected) {
    const auto found = std::ranges::find(items, expected.name, &Item::name);
    return found != items.end() ? whole_words_for(*found) : "";
}

// How the exchange is not what was expected; empty when it is.
std::string difference(const Expectation& expected, const Exchange& exchange) {
    const std::vector<Item> items = take_apart(Sender::kHost, exchange.request).items;
    for (const ExpectedValue& value : expected.with) {
        if (value.is_among(items)) { continue; }
        const std::string instead = counterpart(items, value);
        return fmt::format("came without {}, {}", value.words,
                           instead.empty() ? "as " + request_words(exchange.request) : "but with " + instead);
    }
    for (const ExpectedValue& value : expected.without) {
        if (value.is_among(items)) { return fmt::format("came with {}", value.words); }
    }
    if (!expected.status || *expected.status == exchange.status) { return ""; }
    return fmt::format("was answered with {}, not with {}", status_words(exchange.status),
                       status_words(*expected.status));
}

std::string values_words(const std::vector<ExpectedValue>& values, std::string_view between) {
    std::string words;
    for (const ExpectedValue& value : values) {
        if (!words.empty()) { words += between; }
        words += value.words;
    }
    return words;
}

std::string ids_words(const CommandIds& ids) { return fmt::format("{}", fmt::join(ids, " or ")); }

std::string times_words(unsigned times) {
    return times == 0 ? "never" : times == 1 ? "once" : fmt::format("{} times", times);
}

// All that the expectation asks for.
std::string words_for(const Expectation& expected) {
    std::string words = ids_words(expected.commands);
    if (!expected.with.empty()) { words += " with " + values_words(expected.with, " and "); }
    if (!expected.without.empty()) { words += " without " + values_words(expected.without, " or "); }
    if (expected.status) { words += fmt::format(", answered with {}", status_words(*expected.status)); }
    return words;
}

// Its values are left out, as they may be private.
std::string names_in(const Expectation& expected) {
    const auto names = [](const std::vector<ExpectedValue>& values) {
        std::string words;
        for (const ExpectedValue& value : values) { words += (words.empty() ? " " : ", ") + value.name; }
        return words;
    };
    std::string words = ids_words(expected.commands);
    if (!expected.with.empty()) { words += " with" + names(expected.with); }
    if (!expected.without.empty()) { words += " without" + names(expected.without); }
    if (expected.status) { words += fmt::format(", answered with {}", status_words(*expected.status)); }
    return words;
}

bool is_met(const Expectation::Times& times, unsigned met) { return times ? met == *times : met > 0; }

}  // namespace

Judge::Judge(const Scenario& scenario) : scenario_(scenario) {
    for (const Expectation& each : scenario.expectations) { (each.anywhere ? anywhere_ : ordered_).push_back({each}); }
}

void Judge::exchanged(const Exchange& exchange) {
    for (Count& count : anywhere_) {
        if (!is_among(exchange.command, count.expected.commands)) { continue; }
        const std::string wrong = difference(count.expected, exchange);
        if (wrong.empty()) {
            ++count.met;
        } else {
            count.almost = fmt::format("{} {}", exchange.command, wrong);
        }
    }
    compare_next(exchange);
}

void Judge::compare_next(const Exchange& exchange) {
    if (next_ == ordered_.size()) { return; }
    Count& count = ordered_[next_];
    const Expectation& expected = count.expected;
    if (!is_among(exchange.command, expected.commands)) {
        if (since_.size() < kMostSince) { since_.push_back(exchange.command); }
        return;
    }
    if (const std::string wrong = difference(expected, exchange); !wrong.empty()) {
        complaints_.push_back({expected.line, fmt::format("{} {}", exchange.command, wrong)});
    }
    since_.clear();
    if (++count.met == expected.times.value_or(1)) { ++next_; }
}

bool Judge::is_content() const {
    return complaints_.empty() && next_ == ordered_.size() && std::ranges::all_of(anywhere_, [](const Count& count) {
               return is_met(count.expected.times, count.met);
           });
}

void Judge::complain_of_counts(std::vector<Complaint>& complaints) const {
    for (const auto& [expected, met, almost] : anywhere_) {
        if (is_met(expected.times, met)) { continue; }
        const std::string due = expected.times ? times_words(*expected.times) : "at least once";
        const std::string last = almost.empty() ? "" : fmt::format("; the last {}", almost);
        complaints.push_back({expected.line, fmt::format("expected {}: {}; it came {}{}", due, words_for(expected),
                                                         times_words(met), last)});
    }
    if (next_ == ordered_.size()) { return; }
    const auto& [expected, met, almost] = ordered_[next_];
    const std::string others = since_.empty() ? "nothing" : fmt::format("{}", fmt::join(since_, ", "));
    complaints.push_back({expected.line, fmt::format("expected {}: {}; it came {}, and {} instead",
                                                     times_words(expected.times.value_or(1)), words_for(expected),
                                                     times_words(met), others)});
}

void Judge::complain_of_findings(std::vector<Complaint>& complaints, const std::vector<Finding>& findings) const {
    const auto tells = [](const Finding& finding, const ExpectedFinding& expected) {
        return finding.text.find(expected.text) != std::string::npos;
    };
    for (const ExpectedFinding& expected : scenario_.findings) {
        if (std::ranges::any_of(findings, [&](const Finding& finding) { return tells(finding, expected); })) {
            continue;
        }
        complaints.push_back({expected.line, fmt::format("expected the finding \"{}\"; it never came", expected.text)});
    }
    for (const Finding& finding : findings) {
        const auto expects = [&](const ExpectedFinding& expected) { return tells(finding, expected); };
        if (std::ranges::any_of(scenario_.findings, expects)) { continue; }
        complaints.push_back({0, fmt::format("unexpected finding ({}): {}", kind_name(finding.kind), finding.text)});
    }
}

std::vector<std::string> Judge::complaints(const std::vector<Finding>& findings) const {
    std::vector<Complaint> all = complaints_;
    complain_of_counts(all);
    complain_of_findings(all, findings);
    std::ranges::stable_sort(all, {}, &Complaint::line);
    return words_of(all);
}

std::vector<std::string> Judge::complaints() const { return words_of(complaints_); }

std::vector<std::string> Judge::words_of(const std::vector<Complaint>& complaints) const {
    std::vector<std::string> words;
    words.reserve(complaints.size());
    for (const auto& [line, text] : complaints) {
        words.push_back(line == 0 ? text : fmt::format("{}:{}: {}", scenario_.file, line, text));
    }
    return words;
}

std::vector<Progress::Line> Judge::progress() const {
    using Mark = Progress::Mark;
    std::vector<Progress::Line> lines;
    for (size_t i = 0; i < ordered_.size(); ++i) {
        const uint32_t line = ordered_[i].expected.line;
        const bool failed = std::ranges::find(complaints_, line, &Complaint::line) != complaints_.end();
        const Mark mark = failed ? Mark::kFailed : i < next_ ? Mark::kDone : i == next_ ? Mark::kNow : Mark::kDue;
        lines.push_back({line, words_for(ordered_[i].expected), names_in(ordered_[i].expected), mark});
    }
    for (const Count& count : anywhere_) {
        const bool exceeded = count.expected.times && count.met > *count.expected.times;
        const Mark mark = exceeded ? Mark::kFailed : is_met(count.expected.times, count.met) ? Mark::kDone : Mark::kDue;
        lines.push_back({count.expected.line, words_for(count.expected), names_in(count.expected), mark});
    }
    return lines;
}

}  // namespace quorvel::sim
