// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <string_view>
#include <unistd.h>

#include "cli/error.h"
#include "quorvel/additions.h"

namespace quorvel::cli::interrupt {

namespace {

volatile std::sig_atomic_t received = 0;
volatile std::sig_atomic_t receivedAt = 0;
std::atomic<AbecsComm*> woken = nullptr;
static_assert(std::atomic<AbecsComm*>::is_always_lock_free, "a signal handler reads it");

// Seconds of a clock that nobody sets; safe in a signal handler.
std::sig_atomic_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::sig_atomic_t>(time.tv_sec);
}

// Whoever sends a signal to a process and to its group, as timeout(1) does, means it once.
void end_if_meant_again(int signal) {
    constexpr std::sig_atomic_t kPatience = 2;
    if (now() - receivedAt < kPatience) { return; }
    std::signal(signal, SIG_DFL);
    static_cast<void>(raise(signal));
}

void remember(int signal) {
    if (received != 0) { return end_if_meant_again(signal); }
    // What it interrupts may be about to look at it.
    const int error = errno;
    received = signal;
    receivedAt = now();
    abecs_comm_wake(woken);
    // What does not wait for people may take its seconds; until then the user should know that the key was heard.
    constexpr std::string_view kHeard = "\nStopping...\n";
    if (isatty(STDERR_FILENO) == 1) { static_cast<void>(!write(STDERR_FILENO, kHeard.data(), kHeard.size())); }
    errno = error;
}

}  // namespace

void watch() {
    struct sigaction action = {};
    action.sa_handler = remember;
    for (const int signal : {SIGINT, SIGTERM}) { sigaction(signal, &action, nullptr); }
}

void wake(AbecsComm* link) noexcept { woken = link; }

bool requested() noexcept { return received != 0; }

void check() {
    if (requested()) { throw Interrupted(received == SIGTERM ? Exit::kTerminated : Exit::kInterrupted); }
}

}  // namespace quorvel::cli::interrupt
