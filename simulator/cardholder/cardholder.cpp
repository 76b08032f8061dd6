// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cardholder/cardholder.h"

#include <algorithm>

namespace quorvel::sim {

void Cardholder::act(const Gestures& gestures) {
    const std::lock_guard lock(mutex_);
    add(gestures);
}

void Cardholder::when(std::string command, Gestures gestures) {
    const std::lock_guard lock(mutex_);
    planned_.emplace_back(std::move(command), std::move(gestures));
}

void Cardholder::attend(std::string_view command) {
    const std::lock_guard lock(mutex_);
    const auto next = std::ranges::find(planned_, command, &decltype(planned_)::value_type::first);
    if (next == planned_.end()) { return; }
    add(next->second);
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
