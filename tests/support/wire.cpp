// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/wire.h"

#include <stdexcept>

namespace support {

uint16_t crc_of(std::string_view covered) {
    unsigned crc = 0;
    for (const char c : covered) {
        for (unsigned bit = 0x80; bit != 0; bit >>= 1) {
            const bool carry = ((crc & 0x8000) != 0) != ((static_cast<unsigned char>(c) & bit) != 0);
            crc = ((crc << 1) & 0xFFFF) ^ (carry ? 0x1021 : 0);
        }
    }
    return static_cast<uint16_t>(crc);
}

namespace {

std::string escaped(std::string_view payload) {
    std::string out;
    for (const char c : payload) {
        if (c == '\x13' || c == '\x16' || c == '\x17') {
            out += '\x13';
            out += static_cast<char>(c + 0x20);
        } else {
            out += c;
        }
    }
    return out;
}

std::string framed(std::string_view head, std::string_view payload, uint16_t crc) {
    std::string out(head);
    out += escaped(payload);
    out += '\x17';
    out += static_cast<char>(crc >> 8);
    out += static_cast<char>(crc & 0xFF);
    return out;
}

unsigned digit(char c) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    const size_t value = kDigits.find(c);
    if (value == std::string_view::npos) { throw std::invalid_argument("not an upper-case hex digit"); }
    return static_cast<unsigned>(value);
}

}  // namespace

std::string literals::operator""_hex(const char* kDigits, size_t length) {
    std::string out;
    for (size_t i = 0; i < length; i += 2) {
        if (kDigits[i] == ' ') { ++i; }
        if (i + 1 >= length) { throw std::invalid_argument("half a byte"); }
        out += static_cast<char>(digit(kDigits[i]) << 4 | digit(kDigits[i + 1]));
    }
    return out;
}

std::string to_hex(std::string_view bytes) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string out;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (!out.empty()) { out += ' '; }
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0xF];
    }
    return out;
}

std::string padded(std::string text, size_t width) {
    text.resize(width, ' ');
    return text;
}

std::string frame(std::string_view payload, std::optional<uint16_t> crc) {
    return framed("\x16", payload, crc.value_or(crc_of(std::string(payload) + '\x17')));
}

std::string encrypted_frame(std::string_view payload, std::optional<uint16_t> crc) {
    return framed("\x16\x12", payload, crc.value_or(crc_of('\x12' + std::string(payload) + '\x17')));
}

}  // namespace support
