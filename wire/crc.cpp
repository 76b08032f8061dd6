// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/crc.h"

#include <array>

namespace quorvel::wire {

namespace {

constexpr uint16_t kPolynomial = 0x1021;

constexpr uint16_t remainder_of(uint8_t byte) {
    unsigned value = static_cast<unsigned>(byte) << 8;
    for (int bit = 0; bit < 8; ++bit) {
        const bool carry = (value & 0x8000U) != 0;
        value = (value << 1) & 0xFFFFU;
        if (carry) { value ^= kPolynomial; }
    }
    return static_cast<uint16_t>(value);
}

constexpr auto kRemainders = [] {
    std::array<uint16_t, 256> table{};
    for (size_t i = 0; i < table.size(); ++i) { table[i] = remainder_of(static_cast<uint8_t>(i)); }
    return table;
}();

constexpr uint16_t step(uint16_t crc, uint8_t byte) {
    const auto index = static_cast<uint8_t>((crc >> 8) ^ byte);
    return static_cast<uint16_t>(static_cast<uint16_t>(crc << 8) ^ kRemainders[index]);
}

constexpr uint16_t check_value() {
    uint16_t crc = 0;
    for (const char c : {'1', '2', '3', '4', '5', '6', '7', '8', '9'}) { crc = step(crc, static_cast<uint8_t>(c)); }
    return crc;
}
static_assert(check_value() == 0x31C3);

}  // namespace

uint16_t crc16(ByteView bytes, uint16_t soFar) noexcept {
    for (const uint8_t byte : bytes) { soFar = step(soFar, byte); }
    return soFar;
}

}  // namespace quorvel::wire
