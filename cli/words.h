// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_WORDS_H
#define QUORVEL_CLI_WORDS_H

#include <cstdint>
#include <span>

#include "cli/value.h"
#include "wire/frame.h"
#include "wire/packet.h"

namespace quorvel::cli {

// A packet in words: what it is, the status of a response, and its contents as private as they are.
[[nodiscard]] Group packet_words(wire::Sender sender, std::span<const uint8_t> packet);

// What crossed the line in that direction, a packet or not.
[[nodiscard]] Group words(wire::Sender sender, const wire::Reception& reception);

}  // namespace quorvel::cli

#endif
