// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/hex.h"

#include <charconv>
#include <fmt/format.h>
#include <stdexcept>

namespace quorvel::wire {

std::string to_hex(ByteView bytes) { return fmt::format("{:02X}", fmt::join(bytes, "")); }

Bytes from_hex(std::string_view text) {
    if (text.size() % 2 != 0) { throw std::invalid_argument("an odd number of hexadecimal digits"); }
    Bytes bytes(text.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i) {
        const char* const pair = text.data() + 2 * i;
        if (std::from_chars(pair, pair + 2, bytes[i], 16).ptr != pair + 2) {
            throw std::invalid_argument(fmt::format("no hexadecimal digit at position {}", 2 * i));
        }
    }
    return bytes;
}

}  // namespace quorvel::wire
