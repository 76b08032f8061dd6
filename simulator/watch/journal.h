// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_JOURNAL_H
#define QUORVEL_SIMULATOR_WATCH_JOURNAL_H

#include <deque>
#include <functional>
#include <mutex>
#include <vector>

#include "simulator/watch/clock.h"
#include "simulator/watch/finding.h"
#include "simulator/watch/trace.h"

namespace quorvel::sim {

// What happened, for whoever asks from another thread. Only the newest entries are kept, so that a PIN pad that runs
// for weeks does not fill the memory.
class Journal {
public:
    // Called for each entry as it is recorded, on the PIN pad's thread.
    struct Listeners {
        std::function<void(const Traffic&)> traffic;
        std::function<void(const Finding&)> finding;
    };

    explicit Journal(Listeners listeners, WallClock clock = std::chrono::system_clock::now)
        : listeners_(std::move(listeners)), clock_(std::move(clock)) {}

    void record(Traffic traffic);
    void record(Finding finding);

    [[nodiscard]] std::vector<Traffic> traffic() const;
    [[nodiscard]] std::vector<Finding> findings() const;
    void clear_findings();
    // The next one is the first again.
    void restart_findings();

private:
    const Listeners listeners_;
    const WallClock clock_;
    mutable std::mutex mutex_;
    std::deque<Traffic> traffic_;
    std::deque<Finding> findings_;
    uint64_t found_ = 0;
};

}  // namespace quorvel::sim

#endif
