// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_LIMITS_H
#define QUORVEL_ABECS_DATA_LIMITS_H

#include <cstddef>
#include <cstdint>

// Widths and limits that many commands have in common.
namespace abecs {

inline constexpr size_t kIdWidth = 3;        // of CMD_ID and RSP_ID
inline constexpr size_t kStatWidth = 3;      // of RSP_STAT
inline constexpr size_t kLengthWidth = 3;    // of the length before a block
inline constexpr uint32_t kMaxBlock = 999;   // what such a length can say
inline constexpr uint8_t kMaxIndex = 99;     // of keys, acquirers, tables: two digits
inline constexpr size_t kKeyWidth = 32;      // of an enciphered key of 16 bytes, in digits
inline constexpr size_t kKsnWidth = 20;      // of the serial number of a DUKPT key, in digits
inline constexpr size_t kVersionWidth = 10;  // of the version of an acquirer's tables
inline constexpr size_t kMessageWidth = 32;  // of a message on the display, and of a notification

}  // namespace abecs

#endif
