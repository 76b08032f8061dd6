// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FAULTS_FAULT_H
#define QUORVEL_SIMULATOR_FAULTS_FAULT_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulator/line/message.h"
#include "simulator/line/paced_bytes.h"
#include "simulator/wire.h"

namespace quorvel::sim {

// A way in which what the PIN pad sends goes wrong.
struct FaultKind {
    // What a kind strikes: the ACK of a command, its responses, those of them that carry data, the enciphered ones.
    enum class Target { kAcknowledgement, kResponse, kData, kSealed };
    // What must be told of a fault of this kind.
    enum class Detail { kNone, kTime, kStatus };

    std::string_view name;
    Target target = Target::kResponse;
    Detail detail = Detail::kNone;
    // What it makes of the response's packet, of the frame's content, of the bytes on the line and of their pace; those
    // that leave something alone have no function for it.
    void (*packet)(Bytes& packet, int status) = nullptr;
    void (*content)(Bytes& content) = nullptr;
    void (*wire)(Bytes& wire) = nullptr;
    void (*pace)(PacedBytes::Pace& pace, std::chrono::milliseconds time) = nullptr;
    bool hangsUp = false;
};

[[nodiscard]] std::span<const FaultKind> fault_kinds() noexcept;
// Null when there is no such kind.
[[nodiscard]] const FaultKind* find_fault_kind(std::string_view name) noexcept;

// One fault: what goes wrong, with which command, how often.
struct Fault {
    // A kind's name: "bad-crc".
    std::string kind;
    // The id of the command or, for notifications, NTM; any when empty.
    std::string command = {};
    std::chrono::milliseconds time{};
    int status = 0;
    // Of a status: whether the command is answered with it in place of being carried out, and that in the name of ERR,
    // as what refuses a command as a whole.
    bool before = false;
    bool asError = false;
    // It strikes at every so many-th occasion, with that probability, and so many times in all; without `times`, for
    // ever.
    unsigned every = 1;
    double chance = 1;
    std::optional<unsigned> times = 1;

    bool operator==(const Fault&) const = default;
};

// Throws std::invalid_argument for a fault that cannot be.
void check(const Fault& fault);

[[nodiscard]] bool concerns(const Fault& fault, const FaultKind& kind, const Message& message) noexcept;

}  // namespace quorvel::sim

#endif
