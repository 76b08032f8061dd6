// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/workers.h"

#include <utility>

namespace quorvel::sim::web {

void Workers::bring(std::function<void()> work) {
    std::unique_lock lock(mutex_);
    taken_.wait(lock, [this] { return open_ || idle_ > works_.size() || threads_.size() < most_; });
    works_.push_back(std::move(work));
    if (idle_ < works_.size() && threads_.size() < most_) {
        threads_.emplace_back([this] { serve(); });
    }
    brought_.notify_one();
}

void Workers::open() {
    {
        const std::lock_guard lock(mutex_);
        open_ = true;
    }
    taken_.notify_all();
}

void Workers::finish() {
    {
        const std::lock_guard lock(mutex_);
        finishing_ = open_ = true;
    }
    brought_.notify_all();
    taken_.notify_all();
    for (std::thread& thread : threads_) { thread.join(); }
    threads_.clear();
}

void Workers::serve() {
    std::unique_lock lock(mutex_);
    for (;;) {
        ++idle_;
        taken_.notify_one();
        brought_.wait(lock, [this] { return finishing_ || !works_.empty(); });
        --idle_;
        if (works_.empty()) { return; }
        const auto work = std::move(works_.front());
        works_.pop_front();
        lock.unlock();
        work();
        lock.lock();
    }
}

}  // namespace quorvel::sim::web
