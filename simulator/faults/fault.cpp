// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/faults/fault.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <stdexcept>

#include "wire/command.h"
#include "wire/fields.h"
#include "wire/frame.h"

namespace quorvel::sim {

namespace {

// RSP_ID and RSP_STAT, and RSP_LEN1 behind them.
constexpr size_t kHeadWidth = kIdWidth + kStatusWidth;
constexpr size_t kDataStart = kHeadWidth + 3;
constexpr int kHighestStatus = 999;

void take_another_id(Bytes& packet, int) { std::fill_n(packet.begin(), kIdWidth, uint8_t{'X'}); }

// Only status OK has data behind it.
void take_status(Bytes& packet, int status) {
    packet.resize(kIdWidth);
    append(packet, to_bytes(fmt::format("{:03}", status)));
}

// The first parameter, or in a command of fields the block, says that it is longer than all that comes.
void claim_too_much(Bytes& packet, int) {
    const std::string id(packet.begin(), packet.begin() + kIdWidth);
    const wire::Command* command = wire::find_command(id);
    const bool params = command != nullptr && command->form == wire::Command::Form::kParams;
    if (params && packet.size() >= kDataStart + kParamHead) {
        std::fill_n(packet.begin() + kDataStart + 2, 2, uint8_t{0xFF});
    } else {
        std::fill_n(packet.begin() + kHeadWidth, 3, uint8_t{'9'});
    }
}

// In the cryptogram's first block, where the length and the checksum of the content stand.
void damage(Bytes& content) { content.front() ^= 0x01; }

void vanish(Bytes& wire) { wire.clear(); }
void refuse(Bytes& wire) { wire = {control::kNak}; }
void spoil_crc(Bytes& wire) { wire.back() ^= 0x01; }
void break_off(Bytes& wire) { wire.resize(wire.size() / 2); }
void precede_with_garbage(Bytes& wire) {
    static constexpr std::array<uint8_t, 3> kGarbage{0x55, 0xAA, 0x55};
    wire.insert(wire.begin(), kGarbage.begin(), kGarbage.end());
}

using Pace = PacedBytes::Pace;
using std::chrono::milliseconds;
using Detail = FaultKind::Detail;
using Target = FaultKind::Target;

constexpr std::array kKinds{
    FaultKind{.name = "no-answer", .wire = vanish},
    FaultKind{
        .name = "delay", .detail = Detail::kTime, .pace = [](Pace& pace, milliseconds time) { pace.before = time; }},
    FaultKind{.name = "slow-bytes",
              .detail = Detail::kTime,
              .pace = [](Pace& pace, milliseconds time) { pace.between = time; }},
    FaultKind{
        .name = "split", .detail = Detail::kTime, .pace = [](Pace& pace, milliseconds time) { pace.amid = time; }},
    FaultKind{.name = "garbage", .wire = precede_with_garbage},
    FaultKind{.name = "bad-crc", .wire = spoil_crc},
    FaultKind{.name = "truncated", .wire = break_off},
    FaultKind{.name = "wrong-id", .packet = take_another_id},
    FaultKind{.name = "status", .detail = Detail::kStatus, .packet = take_status},
    FaultKind{.name = "too-long", .target = Target::kData, .packet = claim_too_much},
    FaultKind{.name = "bad-cryptogram", .target = Target::kSealed, .content = damage},
    FaultKind{.name = "nak", .target = Target::kAcknowledgement, .wire = refuse},
    FaultKind{.name = "lost-ack", .target = Target::kAcknowledgement, .wire = vanish},
    FaultKind{.name = "hang-up", .detail = Detail::kTime, .wire = vanish, .hangsUp = true},
};

void require(bool holds, std::string_view what) {
    if (!holds) { throw std::invalid_argument(std::string(what)); }
}

}  // namespace

std::span<const FaultKind> fault_kinds() noexcept { return kKinds; }

const FaultKind* find_fault_kind(std::string_view name) noexcept {
    const auto* found = std::ranges::find(kKinds, name, &FaultKind::name);
    return found != kKinds.end() ? found : nullptr;
}

void check(const Fault& fault) {
    const FaultKind* kind = find_fault_kind(fault.kind);
    require(kind != nullptr, fmt::format("there is no fault \"{}\"", fault.kind));
    require(fault.command.empty() || fault.command.size() == kIdWidth, "a command's id has three characters");
    const bool timed = kind->detail == Detail::kTime;
    require(timed ? fault.time > milliseconds::zero() : fault.time == milliseconds::zero(),
            fmt::format("\"{}\" {}", fault.kind, timed ? "needs a time" : "takes no time"));
    require(fault.status >= 0 && fault.status <= kHighestStatus, "a status is from 0 to 999");
    require(fault.status == 0 || kind->detail == Detail::kStatus, fmt::format("\"{}\" takes no status", fault.kind));
    require(!fault.before || kind->detail == Detail::kStatus,
            fmt::format("\"{}\" strikes nothing before it is carried out", fault.kind));
    require(!fault.asError || fault.before, "an error is what refuses a command before it is carried out");
    require(fault.every > 0, "every 0th occasion is none");
    require(fault.chance > 0 && fault.chance <= 1, "a chance is above 0 and at most 1");
    require(fault.times != 0U, "0 times is never");
}

bool concerns(const Fault& fault, const FaultKind& kind, const Message& message) noexcept {
    const bool request = message.kind == Message::Kind::kRequest;
    if (fault.before || request) { return fault.before && request; }
    const bool response = message.kind == Message::Kind::kResponse;
    switch (kind.target) {
        case Target::kAcknowledgement:
            return !response;
        case Target::kResponse:
            return response;
        case Target::kData:
            return response && message.packet.size() >= kDataStart;
        case Target::kSealed:
            return response && message.sealed;
    }
    return false;
}

}  // namespace quorvel::sim
