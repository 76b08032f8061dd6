// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_STREAM_H
#define QUORVEL_CLI_STREAM_H

#include <string_view>

namespace quorvel::cli::stream {

// Gives those of the three standard streams that are closed a place that takes nothing. Without that, the port that is
// opened next would be one of them, and the PIN pad be sent what is meant for the user.
void secure();

// Writes all of it, however long that takes, unless a signal asks the program to end. The error, or 0; never throws.
int write(int descriptor, std::string_view text) noexcept;

// The same as far as there is room right now: nobody who reads slowly holds up what goes on at the PIN pad. Whether all
// of it was written.
bool offer(int descriptor, std::string_view text) noexcept;

}  // namespace quorvel::cli::stream

#endif
