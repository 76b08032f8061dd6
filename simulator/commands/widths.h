// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_WIDTHS_H
#define QUORVEL_SIMULATOR_COMMANDS_WIDTHS_H

#include <cstddef>

// The widths of what several commands carry.
namespace quorvel::sim::commands {

inline constexpr size_t kAmountDigits = 12;
inline constexpr size_t kTableVersionWidth = 10;
inline constexpr size_t kRecordIndexWidth = 2;
inline constexpr size_t kMaxTagList = 128;
inline constexpr size_t kMaxEmvData = 512;

}  // namespace quorvel::sim::commands

#endif
