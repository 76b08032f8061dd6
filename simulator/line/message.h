// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_MESSAGE_H
#define QUORVEL_SIMULATOR_LINE_MESSAGE_H

#include <string>

#include "simulator/wire.h"

namespace quorvel::sim {

// A command that came, before it is carried out, and what the PIN pad sends about it: the ACK, then its notifications
// and its response.
struct Message {
    enum class Kind { kRequest, kAcknowledgement, kResponse };

    Kind kind = Kind::kResponse;
    // The command's id; NTM for a notification.
    std::string command;
    // Of a response, in clear.
    Bytes packet = {};
    bool sealed = false;
    // Whether a fault has had the command refused.
    bool refused = false;
};

}  // namespace quorvel::sim

#endif
