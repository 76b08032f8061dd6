// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_MANY_H
#define QUORVEL_SIMULATOR_MANY_H

#include <string>
#include <string_view>

// What tells several PIN pads of one program apart: their numbers, from 1 on. For a number of 0, which is the only
// one's, all stays as it is.
namespace quorvel::sim {

// The lines with "7: " before each.
[[nodiscard]] std::string told_by(unsigned number, std::string_view lines);

// "/tmp/pinpad.7"; nothing stays nothing.
[[nodiscard]] std::string path_of(std::string path, unsigned number);

// The serial number so many after the given one, which is that of the first: its last digits count on.
[[nodiscard]] std::string serial_of(std::string first, unsigned number);

}  // namespace quorvel::sim

#endif
