// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cardholder/cardholder.h"

#include <algorithm>
#include <iterator>

namespace quorvel::sim {

namespace {

constexpr size_t kKeptUnused = 100;

}  // namespace

void Cardholder::act(const Gestures& gestures) {
    const std::lock_guard lock(mutex_);
    add(gestures);
}

void Cardholder::when(Plan plan) {
    const std::lock_guard lock(mutex_);
    planned_.push_back(std::move(plan));
}

std::vector<Cardholder::Plan> Cardholder::plans() const {
    const std::lock_guard lock(mutex_);
    return planned_;
}

std::vector<Cardholder::Plan> Cardholder::unused() const {
    const std::lock_guard lock(mutex_);
    return {unused_.begin(), unused_.end()};
}

void Cardholder::clear_plans() {
    const std::lock_guard lock(mutex_);
    planned_.clear();
    unused_.clear();
}

void Cardholder::clear() {
    clear_plans();
    static_cast<void>(take());
}

void Cardholder::pass() {
    const std::lock_guard lock(mutex_);
    for (Plan& plan : planned_) { plan.passed = true; }
}

void Cardholder::part(End end) {
    const std::lock_guard lock(mutex_);
    const auto over = [&](const Plan& plan) { return !plan.kept && (plan.passed || end == End::kHost); };
    std::ranges::copy_if(planned_, std::back_inserter(unused_), over);
    std::erase_if(planned_, over);
    while (unused_.size() > kKeptUnused) { unused_.pop_front(); }
}

void Cardholder::attend(std::string_view command) {
    const std::lock_guard lock(mutex_);
    const auto next = std::ranges::find(planned_, command, &Plan::command);
    if (next == planned_.end()) { return; }
    add(next->gestures);
    planned_.erase(next);
}

std::vector<Event> Cardholder::take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(done_, {});
}

uint64_t Cardholder::acts() const {
    const std::lock_guard lock(mutex_);
    return acts_;
}

void Cardholder::add(const Gestures& gestures) {
    ++acts_;
    done_.insert(done_.end(), gestures.events().begin(), gestures.events().end());
}

}  // namespace quorvel::sim
