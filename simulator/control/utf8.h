// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_UTF8_H
#define QUORVEL_SIMULATOR_CONTROL_UTF8_H

#include <string>
#include <string_view>

namespace quorvel::sim {

// The PIN pad's characters are those of ISO 8859-1.
[[nodiscard]] inline std::string utf8(std::string_view latin) {
    std::string text;
    for (const char character : latin) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x80) { text.push_back(static_cast<char>(0xC0 | (code >> 6))); }
        text.push_back(code >= 0x80 ? static_cast<char>(0x80 | (code & 0x3F)) : character);
    }
    return text;
}

}  // namespace quorvel::sim

#endif
