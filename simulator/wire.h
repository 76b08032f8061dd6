// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WIRE_H
#define QUORVEL_SIMULATOR_WIRE_H

#include "wire/bytes.h"
#include "wire/status.h"

namespace quorvel::sim {

// What crosses the line goes by its own names in here.
using namespace wire;
// The library's interface for C++ has these names, too; a test may well include both.
using wire::Bytes;
using wire::Status;

}  // namespace quorvel::sim

#endif
