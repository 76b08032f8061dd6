// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/scenario/performance.h"

#include <algorithm>
#include <utility>

namespace quorvel::sim {

Performance::Performance(Scenario scenario)
    : scenario_(std::move(scenario)), end_(scenario_.end), player_(scenario_.script), judge_(scenario_) {
    if (scenario_.amounts) { amounts_.emplace(); }
}

PinPad::Options Performance::prepare(PinPad::Options options) {
    options.device = scenario_.device;
    options.second = scenario_.second;
    options.patience = scenario_.patience;
    options.companion = this;
    return options;
}

Progress Performance::progress() const { return {player_.progress(), judge_.progress(), judge_.complaints()}; }

std::vector<std::string> Performance::complaints(const std::vector<Finding>& findings) const {
    std::vector<std::string> complaints = judge_.complaints(findings);
    if (auto stuck = player_.complaint(scenario_.file)) { complaints.push_back(std::move(*stuck)); }
    return complaints;
}

void Performance::begins(PinPad& pinPad, const Exchange& exchange) {
    if (amounts_) { amounts_->begins(pinPad, exchange); }
}

void Performance::waits(PinPad& pinPad, const std::string& command) {
    if (amounts_) { amounts_->waits(pinPad, command); }
    player_.command_waits(command);
    player_.go_on(pinPad, Clock::now());
}

void Performance::exchanged(PinPad& pinPad, const Exchange& exchange) {
    if (amounts_) { amounts_->exchanged(pinPad, exchange); }
    player_.command_ended();
    judge_.exchanged(exchange);
}

void Performance::left(PinPad& pinPad) {
    if (amounts_) { amounts_->left(pinPad); }
    if (end_ == Scenario::End::kStop) { return; }
    const bool done = (player_.is_done() && judge_.is_content()) || judge_.has_decided();
    if (done || end_ == Scenario::End::kClose) { pinPad.request_stop(); }
}

void Performance::work(PinPad& pinPad, Clock::time_point now) {
    player_.go_on(pinPad, now);
    if (amounts_) { amounts_->work(pinPad, now); }
}

std::optional<Performance::Clock::time_point> Performance::due() const {
    const auto own = player_.due();
    const auto other = amounts_ ? amounts_->due() : std::nullopt;
    return own && other ? std::min(*own, *other) : own ? own : other;
}

}  // namespace quorvel::sim
