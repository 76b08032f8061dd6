// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/text.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "cli/error.h"

namespace quorvel::cli {

namespace {

constexpr char kBreak = '\r';

// In UTF-8, U+00A0 to U+00FF are one of two first bytes and a second one that holds six bits.
constexpr uint8_t kUpTo00BF = 0xC2;
constexpr uint8_t kUpTo00FF = 0xC3;

uint8_t latin(uint8_t first, uint8_t second) {
    const auto code = static_cast<uint8_t>((first & 0x03) << 6 | (second & 0x3F));
    const bool pair = (first == kUpTo00BF || first == kUpTo00FF) && (second & 0xC0) == 0x80;
    return pair && code >= 0xA0 ? code : 0;
}

[[noreturn]] void refuse() {
    throw Error(Exit::kUsage, "The text has a character that the PIN pad does not have.",
                "Use the letters of ISO 8859-1, accented ones included, and no control characters.");
}

}  // namespace

std::string to_pin_pad(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if ((byte >= 0x20 && byte < 0x7F) || text[i] == kBreak) {
            out += text[i];
            continue;
        }
        const uint8_t accented = i + 1 < text.size() ? latin(byte, static_cast<uint8_t>(text[i + 1])) : uint8_t{0};
        if (accented == 0) { refuse(); }
        out += static_cast<char>(accented);
        ++i;
    }
    return out;
}

std::string lines_to_pin_pad(std::string text) {
    constexpr std::string_view kWritten = "\\n";
    for (size_t at = text.find(kWritten); at != std::string::npos; at = text.find(kWritten, at)) {
        text.replace(at, kWritten.size(), 1, kBreak);
    }
    std::ranges::replace(text, '\n', kBreak);
    return to_pin_pad(text);
}

}  // namespace quorvel::cli
