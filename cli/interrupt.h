// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_INTERRUPT_H
#define QUORVEL_CLI_INTERRUPT_H

namespace quorvel::cli::interrupt {

// From now on the first SIGINT or SIGTERM is only remembered; one that comes seconds later ends the
// process.
void watch();

[[nodiscard]] bool requested() noexcept;

// Throws Interrupted if a signal has come.
void check();

}  // namespace quorvel::cli::interrupt

#endif
