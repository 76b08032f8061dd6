// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_TRACE_H
#define QUORVEL_SIMULATOR_WATCH_TRACE_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/wire.h"
#include "wire/words.h"

namespace quorvel::sim {

// One frame or control byte that crossed the line.
struct Traffic {
    Sender sender = Sender::kHost;
    Bytes wire;
    std::string words;
    // Whether the bytes hold something that the words withhold.
    bool withheld = false;
    // What a good frame holds, in clear, and before a fault has made something else of it. Only for who listens.
    std::optional<Bytes> packet = {};
    bool sealed = false;
    // The kind of fault that has struck it; empty when none did.
    std::string fault = {};
    std::chrono::system_clock::time_point time = {};
};

// The words for what crossed the line enciphered.
[[nodiscard]] std::string enciphered_words(std::string_view words);

// Whether what was received may hold something private: a frame in clear whose content is not all open, or not whole.
[[nodiscard]] bool is_private(const Reception& reception);

// The bytes in hexadecimal. Of a frame that holds something private, ".." stands for each byte of that and for the
// checksum, which would help to guess it; of one that is not whole there is no more than the id and the status.
[[nodiscard]] std::string wire_text(const Traffic& traffic);
// Two lines: the time, an arrow that tells the sender, and the bytes; the words.
[[nodiscard]] std::string to_text(const Traffic& traffic);

}  // namespace quorvel::sim

#endif
