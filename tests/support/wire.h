// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_WIRE_H
#define QUORVEL_TESTS_SUPPORT_WIRE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Bytes as they travel, kept in strings, so that text and binary parts can be joined: "GCX006" + "00 07 00 02"_hex.
// Nothing here comes from the library under test.
namespace support {

inline namespace literals {

// "16 4F 50"_hex: pairs of hex digits; blanks are ignored.
std::string operator""_hex(const char* digits, size_t length);

}  // namespace literals

// "16 4F 50"
std::string to_hex(std::string_view bytes);

// A field of text, filled up with blanks.
std::string padded(std::string text, size_t width);

// The check of these bytes, calculated bit by bit.
uint16_t crc_of(std::string_view covered);

// SYN, the payload with its escapes, ETB and the CRC: the given one, or the right one, calculated bit by bit in here.
// Tests of the framing itself spell the CRC.
std::string frame(std::string_view payload, std::optional<uint16_t> crc = {});

// The same with DC2 after SYN.
std::string encrypted_frame(std::string_view payload, std::optional<uint16_t> crc = {});

}  // namespace support

#endif
