// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WIRE_H
#define QUORVEL_SIMULATOR_WIRE_H

#include "wire/bytes.h"

namespace quorvel::sim {

// What crosses the line goes by its own names in here.
using namespace wire;

}  // namespace quorvel::sim

#endif
