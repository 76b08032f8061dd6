// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/errands.h"

#include <iterator>
#include <utility>

namespace quorvel::sim {

Errands::Service::Service(Errands& errands) : errands_(errands) {
    const std::lock_guard lock(errands_.mutex_);
    errands_.server_ = std::this_thread::get_id();
}

Errands::Service::~Service() {
    const std::lock_guard lock(errands_.mutex_);
    errands_.server_.reset();
    for (Task& task : errands_.taken_) { task(); }
    for (Task& task : errands_.wanted_) { task(); }
    errands_.taken_.clear();
    errands_.wanted_.clear();
}

void Errands::run(std::function<void()> errand) {
    Task task(std::move(errand));
    std::future<void> done = task.get_future();
    {
        std::unique_lock lock(mutex_);
        if (!server_) {
            task();
        } else if (*server_ == std::this_thread::get_id()) {
            lock.unlock();
            task();
        } else {
            wanted_.push_back(std::move(task));
        }
    }
    wake_();
    done.get();
}

bool Errands::take() {
    const std::lock_guard lock(mutex_);
    std::move(wanted_.begin(), wanted_.end(), std::back_inserter(taken_));
    wanted_.clear();
    return !taken_.empty();
}

void Errands::work() {
    for (Task& task : std::exchange(taken_, {})) { task(); }
}

}  // namespace quorvel::sim
