// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_REPORTER_H
#define QUORVEL_SIMULATOR_WEB_REPORTER_H

#include <atomic>
#include <chrono>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <thread>

#include "simulator/control/control.h"
#include "simulator/scenario/performance.h"
#include "simulator/web/bulletin.h"

namespace quorvel::sim::web {

// Posts the news of a PIN pad as long as somebody reads them: at most every 20 ms, what takes more work every 200 ms,
// and every second even if nothing was touched. It works on a thread of its own; the PIN pad is asked between two
// steps of its own.
class Reporter {
public:
    // All of them must outlive it; there may be no performance.
    Reporter(Bulletin& bulletin, Control& control, const Performance* performance, Bulletin::Values values);
    ~Reporter();
    Reporter(const Reporter&) = delete;
    Reporter& operator=(const Reporter&) = delete;

    // While one lives somebody reads, and from the first moment finds how things are.
    class Reading {
    public:
        explicit Reading(Reporter& reporter) : reporter_(reporter) {
            ++reporter_.readers_;
            reporter_.report();
        }
        ~Reading() { --reporter_.readers_; }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

    private:
        Reporter& reporter_;
    };

    // All of it, now.
    void report();

private:
    using Clock = std::chrono::steady_clock;

    void work();
    void report_quick();
    void report_slow();
    void post_answer(const std::string& verb);
    [[nodiscard]] nlohmann::json state() const;
    [[nodiscard]] nlohmann::json cards() const;
    [[nodiscard]] nlohmann::json findings() const;
    [[nodiscard]] nlohmann::json scenario() const;

    Bulletin& bulletin_;
    Control& control_;
    const Performance* const performance_;
    const Bulletin::Values values_;
    std::atomic<unsigned> readers_{0};
    // Held by whoever reports, so that nothing older is posted behind something newer.
    std::mutex mutex_;
    Clock::time_point slowAt_{};
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace quorvel::sim::web

#endif
