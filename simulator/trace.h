// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_TRACE_H
#define QUORVEL_SIMULATOR_TRACE_H

#include <string>

#include "simulator/bytes.h"
#include "simulator/frame.h"

namespace quorvel::sim {

enum class Sender { host, pinPad };

// One frame or control byte that crossed the line.
struct Traffic {
    Sender sender = Sender::host;
    Bytes wire;
    std::string words;
};

// "GIX device information: SPE_IDLIST=80018003", "GIN 000 OK: \"QUORVEL ...\"".
[[nodiscard]] std::string request_words(ByteView packet);
[[nodiscard]] std::string response_words(ByteView packet);
[[nodiscard]] std::string control_words(uint8_t byte);
[[nodiscard]] std::string reception_words(const Reception& reception);

// Two lines: the bytes in hexadecimal behind an arrow that tells the sender, and the words. Both leave out what
// commands carry whose privacy is to be kept.
[[nodiscard]] std::string to_text(const Traffic& traffic);

}  // namespace quorvel::sim

#endif
