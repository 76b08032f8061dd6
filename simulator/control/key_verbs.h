// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_KEY_VERBS_H
#define QUORVEL_SIMULATOR_CONTROL_KEY_VERBS_H

#include <nlohmann/json_fwd.hpp>

#include "simulator/control/arguments.h"
#include "simulator/control/control.h"

// What an acquirer knows and a PIN pad never tells; this one has keys for tests only.
namespace quorvel::sim {

// The slots that hold a key, with their check values and counters.
[[nodiscard]] nlohmann::json keys(Control& control, Arguments& arguments);
// The PIN in a block that the till was given.
[[nodiscard]] nlohmann::json decipher_pin(Control& control, Arguments& arguments);

}  // namespace quorvel::sim

#endif
