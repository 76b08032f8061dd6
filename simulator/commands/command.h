// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_COMMAND_H
#define QUORVEL_SIMULATOR_COMMANDS_COMMAND_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "simulator/cardholder/event.h"
#include "simulator/device/device.h"
#include "simulator/device/screen.h"
#include "simulator/keys/secure_channel.h"
#include "simulator/watch/journal.h"
#include "simulator/wire.h"
#include "wire/fields.h"
#include "wire/status.h"

namespace quorvel::sim {

// What a handler works on. All but the request outlives the command, so that a wait may go on using it.
struct Call {
    Device& device;
    Journal& journal;
    Screen& screen;
    SecureChannel& channel;
    // Tells the host something, at most 32 characters, while the command waits.
    const std::function<void(std::string_view)>& notify;
    // Stands behind the command's id.
    Reader request;
};

// What a command is answered with: a status, and with status OK up to two blocks.
struct Answer {
    Status status = Status::kOk;
    std::vector<Bytes> blocks = {};
    // What is shown from now on, until somebody shows something else; nothing for what is shown anyway.
    std::optional<std::string> shows = {};

    [[nodiscard]] static Answer of(const Writer& fields) { return {.blocks = {fields.bytes()}}; }
    // The parameters in their order, in the second block those from the first that does not fit on.
    [[nodiscard]] static Answer of(std::span<const Param> params);
};

// A command that is answered when the cardholder has done something.
struct Wait {
    // The answer, once an event makes one.
    std::function<std::optional<Answer>(const Event&)> on;
    // None stands for what the PIN pad waits by itself.
    std::optional<std::chrono::seconds> limit = {};
    // What the host is told as the wait begins, as Call::notify does it later.
    std::string notice = {};
    // What is shown once its time is over; nothing for what was shown before.
    std::optional<std::string> overdue = {};
};

using Outcome = std::variant<Answer, Wait>;

// Commands that never wait have the simpler form.
using Handler = std::variant<Answer (*)(Call&), Outcome (*)(Call&)>;

// What this PIN pad does about a command.
struct Command {
    enum class Session { kStays, kOpens, kEnds };

    std::string_view id;
    Handler handle;
    Session session = Session::kStays;
};

// Runs the handler. What it throws is found and becomes the answer.
[[nodiscard]] Outcome run(const Command& command, Call& call);
// The same for an event that comes while the command waits.
[[nodiscard]] std::optional<Answer> resume(const Command& command, const Wait& wait, const Event& event,
                                           Journal& journal);

// What the request's block holds, which is its only one.
[[nodiscard]] Reader only_block(Call& call);

// What to throw for a parameter that the command does not take, or not again.
[[nodiscard]] LayoutError out_of_place(std::string_view command, uint16_t param);

[[nodiscard]] const Command* find_command(std::string_view id) noexcept;

// "GIN" 000, and the blocks each behind three digits of length.
[[nodiscard]] Bytes response_packet(std::string_view id, const Answer& answer);

}  // namespace quorvel::sim

#endif
