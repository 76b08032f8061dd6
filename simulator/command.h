// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMAND_H
#define QUORVEL_SIMULATOR_COMMAND_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/bytes.h"
#include "simulator/device.h"
#include "simulator/fields.h"
#include "simulator/journal.h"
#include "simulator/status.h"

namespace quorvel::sim {

// What a handler works on.
struct Call {
    Device& device;
    Journal& journal;
    // Stands behind the command's id.
    Reader request;
};

// What a command is answered with: a status, and with status OK up to two blocks.
struct Answer {
    Status status = Status::ok;
    std::vector<Bytes> blocks;

    [[nodiscard]] static Answer of(const Writer& fields) { return {.blocks = {fields.bytes()}}; }
    // The parameters in their order, in the second block those from the first that does not fit on.
    [[nodiscard]] static Answer of(std::span<const Param> params);
};

struct Command {
    enum class Form { fields, params };

    std::string_view id;
    std::string_view title;
    Form form = Form::fields;
    Answer (*handle)(Call&) = nullptr;
};

// What to throw for a parameter that the command does not take, or not again.
[[nodiscard]] LayoutError out_of_place(std::string_view command, uint16_t param);

[[nodiscard]] const Command* find_command(std::string_view id) noexcept;

// "GIN" 000, and the blocks each behind three digits of length.
[[nodiscard]] Bytes response_packet(std::string_view id, const Answer& answer);

}  // namespace quorvel::sim

#endif
