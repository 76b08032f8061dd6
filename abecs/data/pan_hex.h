// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_PAN_HEX_H
#define QUORVEL_ABECS_DATA_PAN_HEX_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// Hexadecimal conversion for enciphered card numbers, with limits and texts of its own.
namespace abecs::pan {

constexpr size_t kMaxHexLength = 64;
constexpr size_t kMaxBytes = kMaxHexLength / 2;

// Writes one byte for each pair of digits in either case; false after a raise.
[[nodiscard]] bool from_hex(std::string_view text, uint8_t* to);

// Writes two upper-case digits for each byte and no terminator; false after a raise.
[[nodiscard]] bool to_hex(std::span<const uint8_t> bytes, char* to);

}  // namespace abecs::pan

#endif
