// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/transmitter.h"

#include <fmt/format.h>
#include <utility>

#include "simulator/watch/trace.h"
#include "wire/fields.h"
#include "wire/frame.h"

namespace quorvel::sim {

namespace {

// What a fault does at each stage of the way; nothing where there is none.
template <typename... Arguments, typename... Values>
void apply(const FaultKind* kind, void (*FaultKind::*stage)(Arguments...), Values&&... values) {
    if (kind != nullptr && kind->*stage != nullptr) { (kind->*stage)(std::forward<Values>(values)...); }
}

// RSP_STAT, behind RSP_ID.
int status_of(ByteView packet) {
    return static_cast<int>(Reader("response", packet.subspan(kIdWidth)).n("RSP_STAT", kStatusWidth));
}

const FaultKind* kind_of(const std::optional<Fault>& fault) { return fault ? find_fault_kind(fault->kind) : nullptr; }

}  // namespace

Transmitter::Transmitter(std::chrono::nanoseconds perByte, FaultPlan& faults, Journal& journal, Line line)
    : faults_(faults), journal_(journal), line_(std::move(line)), bytes_(perByte) {}

std::optional<Fault> Transmitter::refusal(std::string_view command) {
    return faults_.strike({.kind = Message::Kind::kRequest, .command = std::string(command)});
}

void Transmitter::send_byte(uint8_t byte) { put({Sender::kPinPad, {byte}, control_words(byte)}); }

bool Transmitter::acknowledge(std::string_view command) {
    const auto fault = faults_.strike({.kind = Message::Kind::kAcknowledgement, .command = std::string(command)});
    Bytes wire{control::kAck};
    apply(kind_of(fault), &FaultKind::wire, wire);
    const bool accepted = wire != Bytes{control::kNak};
    put({Sender::kPinPad, std::move(wire), control_words(control::kAck)}, fault);
    return accepted;
}

int Transmitter::send(const Message& message, const SecureChannel& channel) {
    const auto fault = faults_.strike(message);
    const FaultKind* const kind = kind_of(fault);
    Bytes packet = message.packet;
    if (fault) { apply(kind, &FaultKind::packet, packet, fault->status); }
    const int status = status_of(packet);
    Bytes content = message.sealed ? channel.seal(packet) : packet;
    apply(kind, &FaultKind::content, content);
    Bytes wire = encode({.encrypted = message.sealed, .data = std::move(content)});
    apply(kind, &FaultKind::wire, wire);
    // In words, what was meant: of what a fault has made of it they might tell more than they should.
    const std::string words = response_words(message.packet) + (message.refused ? " (fault: status)" : "");
    put({Sender::kPinPad, std::move(wire), message.sealed ? enciphered_words(words) : words,
         !message.sealed && !is_open(Sender::kPinPad, message.packet), message.packet, message.sealed},
        fault);
    if (kind != nullptr && kind->hangsUp) { line_.hangUp(fault->time); }
    return status;
}

void Transmitter::abandon() {
    flush();
    bytes_.clear();
}

void Transmitter::flush() {
    if (const Bytes due = bytes_.take(Clock::now()); !due.empty()) { line_.write(due); }
}

// Recorded first: whoever has read the answer can rely on finding it in the journal.
void Transmitter::put(Traffic traffic, const std::optional<Fault>& fault) {
    PacedBytes::Pace pace;
    if (fault) {
        apply(kind_of(fault), &FaultKind::pace, pace, fault->time);
        traffic.words += fmt::format(" (fault: {})", fault->kind);
        traffic.fault = fault->kind;
    }
    bytes_.push(traffic.wire, pace, Clock::now());
    journal_.record(std::move(traffic));
    flush();
}

}  // namespace quorvel::sim
