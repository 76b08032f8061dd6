// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_RECORDING_STAND_IN_H
#define QUORVEL_SIMULATOR_RECORDING_STAND_IN_H

#include <string>
#include <vector>

#include "simulator/wire.h"
#include "wire/command.h"

namespace quorvel::sim {

// A packet in which test values stand in for all that traces withhold. Each is as long as what it stands in for, so
// that the layout stays as it was; docs/recording.md tells which they are.
struct StandIn {
    Bytes packet;
    // The names of the values that made way: "PP_PAN", of data objects "PP_EMVDATA/57", "rest" for what has no name.
    std::vector<std::string> replaced;
};

[[nodiscard]] StandIn stand_in(Sender sender, ByteView packet);

}  // namespace quorvel::sim

#endif
