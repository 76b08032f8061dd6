// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/interrupt.h"

#include <csignal>
#include <string_view>
#include <unistd.h>

#include "cli/error.h"

namespace quorvel::cli::interrupt {

namespace {

volatile std::sig_atomic_t received = 0;

void remember(int signal) {
    received = signal;
    // Waiting for the PIN pad ends within two seconds; until then the user should know that the key was heard.
    constexpr std::string_view heard = "\nStopping...\n";
    if (isatty(STDERR_FILENO) == 1) static_cast<void>(!write(STDERR_FILENO, heard.data(), heard.size()));
}

}  // namespace

void watch() {
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
}

bool requested() noexcept { return received != 0; }

void check() {
    if (requested()) throw Interrupted(received == SIGTERM ? Exit::terminated : Exit::interrupted);
}

}  // namespace quorvel::cli::interrupt
