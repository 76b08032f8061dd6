// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_RECORDING_SCENARIO_MAKER_H
#define QUORVEL_SIMULATOR_RECORDING_SCENARIO_MAKER_H

#include <string>

#include "wire/recording.h"

namespace quorvel::sim {

using wire::Recording;

// A scenario in TOML that expects what the host has done in the recording and has the cardholder act as there, for
// somebody to go on with. docs/recording.md says what it takes over. Throws std::runtime_error for a recorded fault
// that is none.
[[nodiscard]] std::string scenario_from(const Recording& recording, const std::string& title);

}  // namespace quorvel::sim

#endif
