// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_INTERRUPT_H
#define QUORVEL_CLI_INTERRUPT_H

#include <array>
#include <string>

#include "cli/error.h"

namespace quorvel::cli::interrupt {

// From now on the first SIGINT, SIGTERM or SIGHUP is remembered, ends what is waited for, and gives the program three
// seconds to leave the PIN pad idle. If the PIN pad does not answer it ends then, with its last words.
void watch();

[[nodiscard]] bool requested() noexcept;

// Throws Interrupted if a signal has come.
void check();

// What is to be written at such an end, and the exit code with it: what is known until now.
struct Words {
    std::string text;
    Exit exit;
};
// For SIGHUP, SIGINT and SIGTERM.
void last_words(int descriptor, std::array<Words, 3> words);

// While a port is being opened nothing but CAN is sent, so that a signal can end the program at once.
class Opening {
public:
    Opening() noexcept;
    ~Opening();
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;
};

// While one lives, a signal calls `end` with `what`, at once: it must be safe in a signal handler.
class Target {
public:
    Target(void (*end)(void*) noexcept, void* what) noexcept;
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

private:
    void (*end_)(void*) noexcept;
    void* what_;

    friend void end_target() noexcept;
};

// Of something whose cancel() a signal may call.
template <typename Wait>
[[nodiscard]] Target cancels(Wait& wait) noexcept {
    return {[](void* what) noexcept { static_cast<Wait*>(what)->cancel(); }, &wait};
}

// While one lives, the PIN pad owes an answer on this line that it gives by itself. If it has not after a second of a
// signal, it is told to stop by the byte that says so, and what waits for the answer ends with that.
class Exchange {
public:
    explicit Exchange(int line) noexcept;
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
};

}  // namespace quorvel::cli::interrupt

#endif
