// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_MESSAGE_H
#define QUORVEL_SIMULATOR_LINE_MESSAGE_H

#include <string>

#include "simulator/wire.h"

namespace quorvel::sim {

// What the PIN pad sends about a command: the ACK when it came, then its notifications and its response.
struct Message {
    enum class Kind { kAcknowledgement, kResponse };

    Kind kind = Kind::kResponse;
    // The command's id; NTM for a notification.
    std::string command;
    // Of a response, in clear.
    Bytes packet = {};
    bool sealed = false;
};

}  // namespace quorvel::sim

#endif
