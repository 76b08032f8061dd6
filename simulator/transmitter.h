// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_TRANSMITTER_H
#define QUORVEL_SIMULATOR_TRANSMITTER_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/faults/fault_plan.h"
#include "simulator/keys/secure_channel.h"
#include "simulator/line/message.h"
#include "simulator/line/paced_bytes.h"
#include "simulator/watch/journal.h"
#include "simulator/wire.h"

namespace quorvel::sim {

// Makes of what the engine wants to say the bytes that go out, in their time: this is where faults strike.
class Transmitter {
public:
    using Clock = PacedBytes::Clock;

    struct Line {
        std::function<void(ByteView)> write;
        // The line is to be gone for this long.
        std::function<void(std::chrono::milliseconds)> hangUp;
    };

    Transmitter(std::chrono::nanoseconds perByte, FaultPlan& faults, Journal& journal, Line line);

    // The fault that has the command refused in place of being carried out.
    [[nodiscard]] std::optional<Fault> refusal(std::string_view command);
    // One that belongs to no command.
    void send_byte(uint8_t byte);
    // False when the host heard a refusal instead, and will repeat the command.
    [[nodiscard]] bool acknowledge(std::string_view command);
    // The status that the response tells: that of the message, or another by a fault's doing.
    [[nodiscard]] int send(const Message& message, const SecureChannel& channel);

    // What has not gone out never will.
    void abandon();
    // Writes what is due.
    void flush();
    // When to call flush() at the latest.
    [[nodiscard]] std::optional<Clock::time_point> due() const { return bytes_.due(); }

private:
    void put(Traffic traffic, const std::optional<Fault>& fault = {});

    FaultPlan& faults_;
    Journal& journal_;
    const Line line_;
    PacedBytes bytes_;
};

}  // namespace quorvel::sim

#endif
