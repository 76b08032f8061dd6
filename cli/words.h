// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_WORDS_H
#define QUORVEL_CLI_WORDS_H

#include <cstdint>
#include <span>

#include "cli/value.h"
#include "simulator/watch/trace.h"
#include "wire/frame.h"

namespace quorvel::cli {

// A packet in words: what it is, the status of a response, and its contents as private as they are.
[[nodiscard]] Group request_words(std::span<const uint8_t> packet);
[[nodiscard]] Group response_words(std::span<const uint8_t> packet);

// What crossed the line in that direction, a packet or not.
[[nodiscard]] Group words(sim::Sender sender, const sim::Reception& reception);

}  // namespace quorvel::cli

#endif
