// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_STEP_FILE_H
#define QUORVEL_SIMULATOR_SCENARIO_STEP_FILE_H

#include <string_view>

#include "simulator/files/toml_table.h"
#include "simulator/scenario/scenario.h"

namespace quorvel::sim {

// Both throw as TomlTable does.

// One id or several, of commands that there are.
[[nodiscard]] CommandIds command_ids(TomlTable& table, std::string_view key);

// A table like { wait = "GCX" }, { pause = 500 } or, for whatever verb of the control socket's does something,
// { insert = "visa-chip" }: its name with the value of its first member, and the other members beside it.
[[nodiscard]] Step read_step(TomlTable& table, const Cards& cards);

}  // namespace quorvel::sim

#endif
