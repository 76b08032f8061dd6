// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_INTERRUPT_H
#define QUORVEL_CLI_INTERRUPT_H

#include "quorvel/quorvel.h"

namespace quorvel::cli::interrupt {

// From now on the first SIGINT or SIGTERM is only remembered; one that comes seconds later ends the
// process.
void watch();

// A signal ends what this link waits for, until another one is named, or none.
void wake(AbecsComm* link) noexcept;

[[nodiscard]] bool requested() noexcept;

// Throws Interrupted if a signal has come.
void check();

}  // namespace quorvel::cli::interrupt

#endif
