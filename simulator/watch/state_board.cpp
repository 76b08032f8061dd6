// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/state_board.h"

#include <utility>

namespace quorvel::sim {

void StateBoard::post(const State& state) {
    const std::lock_guard lock(mutex_);
    if (state == state_) { return; }
    if (!state.waiting.empty() && state.waiting != state_.waiting) {
        ++waits_[state.waiting];
        ++waits_[""];
    }
    state_ = state;
    if (listener_) { listener_(); }
    if (changed_) { changed_(); }
}

State StateBoard::state() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

uint64_t StateBoard::waits(const std::string& command) const {
    const std::lock_guard lock(mutex_);
    const auto found = waits_.find(command);
    return found != waits_.end() ? found->second : 0;
}

void StateBoard::on_change(std::function<void()> listener) {
    const std::lock_guard lock(mutex_);
    listener_ = std::move(listener);
}

}  // namespace quorvel::sim
