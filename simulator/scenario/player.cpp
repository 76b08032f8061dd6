// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/scenario/player.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace quorvel::sim {

namespace {

// Of a host that goes on for days only the first ones are told.
constexpr size_t kMostOthers = 10;

}  // namespace

void Player::command_waits(const std::string& command) {
    waiting_ = command;
    if (!is_done() && others_.size() < kMostOthers) { others_.push_back(command); }
}

void Player::go_on(PinPad& pinPad, Clock::time_point now) {
    for (; next_ != script_.end(); ++next_) {
        if (const auto* wait = std::get_if<Step::Wait>(&next_->what); wait != nullptr && !is_over(*wait)) { return; }
        if (const auto* pause = std::get_if<Step::Pause>(&next_->what); pause != nullptr && !is_over(*pause, now)) {
            return;
        }
        if (const auto* deed = std::get_if<Step::Deed>(&next_->what)) { (*deed)(pinPad); }
    }
}

bool Player::is_over(const Step::Wait& wait) {
    if (!waiting_ || std::ranges::find(wait.commands, *waiting_) == wait.commands.end()) { return false; }
    waiting_.reset();
    others_.clear();
    return true;
}

bool Player::is_over(const Step::Pause& pause, Clock::time_point now) {
    if (!pausedUntil_) { pausedUntil_ = now + pause.time; }
    if (now < *pausedUntil_) { return false; }
    pausedUntil_.reset();
    return true;
}

std::vector<Progress::Line> Player::progress() const {
    std::vector<Progress::Line> lines;
    for (auto step = script_.begin(); step != script_.end(); ++step) {
        const auto mark = step < next_    ? Progress::Mark::kDone
                          : step == next_ ? Progress::Mark::kNow
                                          : Progress::Mark::kDue;
        lines.push_back({step->line, step->words, step->openWords, mark});
    }
    return lines;
}

std::optional<std::string> Player::complaint(const std::string& file) const {
    if (is_done()) { return std::nullopt; }
    const std::string others = others_.empty() ? "no command" : fmt::format("{}", fmt::join(others_, ", "));
    return fmt::format("{}:{}: the script did not get past {}; {} waited instead", file, next_->line, next_->words,
                       others);
}

}  // namespace quorvel::sim
