// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_TRACE_H
#define QUORVEL_SIMULATOR_WATCH_TRACE_H

#include <string>
#include <string_view>

#include "simulator/wire.h"
#include "wire/frame.h"

namespace quorvel::sim {

enum class Sender { host, pinPad };

// One frame or control byte that crossed the line.
struct Traffic {
    Sender sender = Sender::host;
    Bytes wire;
    std::string words;
    // Set for bytes in which the command whose privacy is to be kept cannot be recognised any more.
    bool withheld = false;
};

// "GIX device information: SPE_IDLIST=80018003", "GIN 000 OK: \"QUORVEL ...\"".
[[nodiscard]] std::string request_words(ByteView packet);
// Of a command whose privacy is to be kept too.
[[nodiscard]] std::string whole_request_words(ByteView packet);
[[nodiscard]] std::string response_words(ByteView packet);
[[nodiscard]] std::string control_words(uint8_t byte);
[[nodiscard]] std::string reception_words(const Reception& reception);
// The words for what crossed the line enciphered.
[[nodiscard]] std::string enciphered_words(std::string_view words);

// Whether a packet belongs to a command whose privacy is to be kept.
[[nodiscard]] bool is_withheld(ByteView packet);

// The bytes in hexadecimal. Like the words, they leave out what commands carry whose privacy is to be kept.
[[nodiscard]] std::string wire_text(const Traffic& traffic);
// Two lines: the bytes behind an arrow that tells the sender, and the words.
[[nodiscard]] std::string to_text(const Traffic& traffic);

}  // namespace quorvel::sim

#endif
