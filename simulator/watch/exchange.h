// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_EXCHANGE_H
#define QUORVEL_SIMULATOR_WATCH_EXCHANGE_H

#include <optional>
#include <string>

#include "simulator/wire.h"

namespace quorvel::sim {

// A command of the host's and what came of it.
struct Exchange {
    // The id, or as much of it as there was.
    std::string command;
    // In clear, the id included.
    Bytes request;
    // What the PIN pad meant to answer, whatever a fault has made of it; in clear, too, and empty when it did not.
    Bytes response = {};
    // What the host was told, a fault's doing included; none when it gave the command up before there was an answer.
    std::optional<int> status = {};
};

}  // namespace quorvel::sim

#endif
