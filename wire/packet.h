// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_PACKET_H
#define QUORVEL_WIRE_PACKET_H

#include <optional>
#include <string>
#include <vector>

#include "wire/command.h"
#include "wire/item.h"

namespace quorvel::wire {

// A request or a response, taken apart.
struct Packet {
    // As much of it as there is.
    std::string id;
    // Null for one that is not known.
    const Command* command = nullptr;
    // Of a response.
    std::optional<int> status = {};
    // One alone without a name for what breaks its layout, or is nothing that is known.
    std::vector<Item> items = {};
};

[[nodiscard]] Packet take_apart(Sender sender, ByteView packet);

// For each byte, whether it may be shown to anyone. Of data objects that are not all open none is.
[[nodiscard]] std::vector<bool> open_bytes(Sender sender, ByteView packet);

// Whether everything in it may be shown to anyone.
[[nodiscard]] bool is_open(Sender sender, ByteView packet);

}  // namespace quorvel::wire

#endif
