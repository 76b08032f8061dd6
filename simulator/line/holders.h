// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_HOLDERS_H
#define QUORVEL_SIMULATOR_LINE_HOLDERS_H

#include <string>

namespace quorvel::sim {

// Whether a process that this one may look into has the device open, other than this one by the descriptor `own`.
[[nodiscard]] bool is_held(const std::string& device, int own);

}  // namespace quorvel::sim

#endif
