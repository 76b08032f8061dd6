// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_CODEC_H
#define QUORVEL_ABECS_DATA_CODEC_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "quorvel/kor/buffer.h"

// What the field types share, and those readers that other sources need with the failure visible in the result: a
// raise may return, and 0 is also a value.
namespace abecs::codec {

// False when the bytes did not fit, about which the buffer has then raised.
bool append(KorBuffer* buffer, const void* bytes, size_t length);
bool append_repeated(KorBuffer* buffer, std::string_view unit, size_t count);

// False, with an error raised, when fewer than `length` bytes wait.
[[nodiscard]] bool require(const KorBuffer* buffer, size_t length);

bool append_x(KorBuffer* buffer, uint32_t data, size_t fieldLen);

[[nodiscard]] bool read_a(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen);
[[nodiscard]] std::optional<uint64_t> read_n(KorBuffer* buffer, size_t fieldLen);
[[nodiscard]] std::optional<uint32_t> read_x(KorBuffer* buffer, size_t fieldLen);
[[nodiscard]] std::optional<int32_t> read_rsp_stat(KorBuffer* buffer);

// By ranges, because the C library's classes follow the locale.
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool is_hex(char c) { return is_digit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

constexpr char to_upper(char c) { return is_lower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

constexpr unsigned hex_digit(char c) { return static_cast<unsigned>(is_digit(c) ? c - '0' : to_upper(c) - 'A' + 10); }

// The byte that a pair of hexadecimal digits names.
constexpr uint8_t hex_byte(char high, char low) { return static_cast<uint8_t>(hex_digit(high) << 4 | hex_digit(low)); }
static_assert(hex_byte('a', 'F') == 0xAF && hex_byte('3', '0') == '0');

// In messages a character is shown as its byte: a plain char would be sign-extended.
constexpr unsigned shown(char c) { return static_cast<unsigned char>(c); }

}  // namespace abecs::codec

#endif
