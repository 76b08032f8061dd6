// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_STATE_VERBS_H
#define QUORVEL_SIMULATOR_CONTROL_STATE_VERBS_H

#include <nlohmann/json_fwd.hpp>

#include "simulator/control/arguments.h"
#include "simulator/control/control.h"

// The requests that look at what the PIN pad has and remembers, and that change it. Each gives the members of its
// answer besides "ok".
namespace quorvel::sim::verbs {

[[nodiscard]] nlohmann::json reset(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json plans(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json clear_plans(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json new_card(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json edit_card(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json session(Control& control, Arguments& arguments);
[[nodiscard]] nlohmann::json tables(Control& control, Arguments& arguments);

}  // namespace quorvel::sim::verbs

#endif
