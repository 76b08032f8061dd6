// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_CRC16_H
#define QUORVEL_ABECS_COMM_CRC16_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace abecs {

// Bits are taken most significant first, without reflection and without a final XOR.
struct Crc16Parameters {
    uint16_t polynomial;
    uint16_t initial;
    uint16_t check;  // of the nine characters "123456789"
};

inline constexpr Crc16Parameters kCrc16{0x1021, 0x0000, 0x31C3};

[[nodiscard]] constexpr std::array<uint16_t, 256> crc16_table(uint16_t polynomial) {
    std::array<uint16_t, 256> table{};
    for (size_t index = 0; index < table.size(); ++index) {
        auto crc = static_cast<uint16_t>(index << 8);
        for (int bit = 0; bit < 8; ++bit) {
            crc = static_cast<uint16_t>((crc << 1) ^ ((crc & 0x8000) != 0 ? polynomial : 0));
        }
        table[index] = crc;
    }
    return table;
}

inline constexpr std::array<uint16_t, 256> kCrc16Table = crc16_table(kCrc16.polynomial);

[[nodiscard, gnu::always_inline]] constexpr uint16_t crc16_update(uint16_t crc, uint8_t byte) {
    return static_cast<uint16_t>((crc << 8) ^ kCrc16Table[static_cast<uint8_t>((crc >> 8) ^ byte)]);
}

[[nodiscard]] constexpr uint16_t crc16_of(std::string_view text) {
    uint16_t crc = kCrc16.initial;
    for (const char c : text) { crc = crc16_update(crc, static_cast<uint8_t>(c)); }
    return crc;
}

static_assert(crc16_of("123456789") == kCrc16.check);

}  // namespace abecs

#endif
