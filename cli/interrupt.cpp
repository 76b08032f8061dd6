// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <sys/time.h>
#include <unistd.h>
#include <utility>

#include "wire/frame.h"

namespace quorvel::cli::interrupt {

namespace {

// What the handlers read, which must take no lock for it.
std::atomic<int> received = 0;
std::atomic<int> alarms = 0;
std::atomic<bool> opening = false;
std::atomic<int> exchange = -1;
std::atomic<const Target*> target = nullptr;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<const Target*>::is_always_lock_free);

struct Last {
    int descriptor = STDERR_FILENO;
    std::array<Words, 3> words;
};
// Written in turn, so that the one that is published stays as it is.
std::array<Last, 2> kept;
std::atomic<const Last*> last = nullptr;

void say(int descriptor, std::string_view text) noexcept {
    static_cast<void>(!write(descriptor, text.data(), text.size()));
}

[[noreturn]] void end_now() noexcept {
    const Last* said = last;
    if (said == nullptr) { _exit(static_cast<int>(Exit::kInterrupted)); }
    const Words& words = said->words[received == SIGHUP ? 0 : received == SIGINT ? 1 : 2];
    say(said->descriptor, words.text);
    _exit(static_cast<int>(words.exit));
}

void set_alarm(int seconds) noexcept {
    const itimerval timer{{0, 0}, {seconds, 0}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

// Beside the class that befriends it.
void end_target() noexcept {
    if (const Target* aimed = target) { aimed->end_(aimed->what_); }
}

namespace {

void remember(int signal) {
    const int error = errno;
    int none = 0;
    // Whoever sends a signal to a process and to its group, as timeout(1) does, means it once.
    if (received.compare_exchange_strong(none, signal)) {
        if (opening) { end_now(); }
        end_target();
        set_alarm(1);
        constexpr std::string_view kHeard = "\nStopping...\n";
        if (isatty(STDERR_FILENO) == 1) { say(STDERR_FILENO, kHeard); }
    }
    errno = error;
}

// A second after the signal what is not answered is ended, and two seconds later the program.
void run_out(int) {
    const int error = errno;
    if (++alarms > 1) { end_now(); }
    if (exchange >= 0) {
        const uint8_t can = wire::control::kCan;
        static_cast<void>(!write(exchange, &can, 1));
    }
    set_alarm(2);
    errno = error;
}

void handle(std::initializer_list<int> signals, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    for (const int signal : signals) {
        struct sigaction before = {};
        sigaction(signal, &action, &before);
        // nohup(1) means it.
        if (signal == SIGHUP && before.sa_handler == SIG_IGN) { sigaction(signal, &before, nullptr); }
    }
}

}  // namespace

void watch() {
    handle({SIGINT, SIGTERM, SIGHUP}, remember);
    handle({SIGALRM}, run_out);
    // Who writes hears of a reader that is gone, and says so where it can.
    handle({SIGPIPE}, SIG_IGN);
}

bool requested() noexcept { return received != 0; }

void check() {
    switch (received) {
        case 0:
            return;
        case SIGTERM:
            throw Interrupted(Exit::kTerminated);
        case SIGHUP:
            throw Interrupted(Exit::kHungUp);
        default:
            throw Interrupted(Exit::kInterrupted);
    }
}

void last_words(int descriptor, std::array<Words, 3> words) {
    Last& next = last == kept.data() ? kept[1] : kept[0];
    next = {descriptor, std::move(words)};
    last = &next;
}

Opening::Opening() noexcept {
    opening = true;
    // One that came just before.
    if (requested()) { end_now(); }
}
Opening::~Opening() { opening = false; }

Target::Target(void (*end)(void*) noexcept, void* what) noexcept : end_(end), what_(what) {
    target = this;
    if (requested()) { end_(what_); }
}
Target::~Target() { target = nullptr; }

Exchange::Exchange(int line) noexcept { exchange = line; }
Exchange::~Exchange() { exchange = -1; }

}  // namespace quorvel::cli::interrupt
