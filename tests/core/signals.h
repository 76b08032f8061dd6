// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_SIGNALS_H
#define QUORVEL_TESTS_CORE_SIGNALS_H

#include <atomic>
#include <csignal>
#include <ctime>
#include <unistd.h>

// While one lives, SIGALRM interrupts the thread that made it, again and again.
class Signals {
public:
    // `flags` are those of sigaction: 0 or SA_RESTART.
    explicit Signals(int flags) {
        count = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { ++count; };
        action.sa_flags = flags;
        sigaction(SIGALRM, &action, &before_);
        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SIGALRM;
        event._sigev_un._tid = gettid();
        timer_create(CLOCK_MONOTONIC, &event, &timer_);
        const timespec pause{0, 3'000'000};
        const itimerspec often{pause, pause};
        timer_settime(timer_, 0, &often, nullptr);
    }
    ~Signals() {
        timer_delete(timer_);
        sigaction(SIGALRM, &before_, nullptr);
    }
    Signals(Signals&&) = delete;

    [[nodiscard]] int seen() const { return count; }

private:
    static inline std::atomic<int> count = 0;
    struct sigaction before_ {};
    timer_t timer_{};
};

#endif
