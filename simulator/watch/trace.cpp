// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/trace.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

#include "simulator/watch/clock.h"

namespace quorvel::sim {

namespace {

std::string hex(ByteView bytes) { return fmt::format("{:02X}", fmt::join(bytes, " ")); }

// Of bytes that are one good frame in clear and nothing else.
std::optional<Bytes> packet_of(ByteView wire) {
    FrameDecoder decoder;
    for (const uint8_t byte : wire) {
        const auto reception = decoder.feed(byte);
        if (!reception) { continue; }
        const bool good = reception->kind == Reception::Kind::kFrame && !reception->frame.encrypted;
        return good && reception->wire.size() == wire.size() ? std::optional(reception->frame.data) : std::nullopt;
    }
    return std::nullopt;
}

// As it stands on the line, between SYN and ETB.
std::string stuffed(uint8_t byte) {
    const Bytes wire = encode({.encrypted = false, .data = {byte}});
    return hex(ByteView(wire).subspan(1, wire.size() - 4));
}

// A withheld byte does not show whether it was stuffed.
std::string masked(Sender sender, ByteView packet) {
    const std::vector<bool> open = open_bytes(sender, packet);
    std::string text = hex(Bytes{control::kSyn});
    for (size_t i = 0; i < packet.size(); ++i) { text += " " + (open[i] ? stuffed(packet[i]) : ".."); }
    return text + " " + hex(Bytes{control::kEtb}) + " .. ..";
}

}  // namespace

std::string enciphered_words(std::string_view words) { return fmt::format("enciphered {}", words); }

bool is_private(const Reception& reception) {
    if (reception.kind == Reception::Kind::kByte || reception.frame.encrypted) { return false; }
    return !is_open(Sender::kHost, reception.frame.data);
}

std::string wire_text(const Traffic& traffic) {
    if (!traffic.withheld) { return hex(traffic.wire); }
    if (const auto packet = packet_of(traffic.wire)) { return masked(traffic.sender, *packet); }
    const size_t open = 1 + kIdWidth + (traffic.sender == Sender::kPinPad ? kStatusWidth : 0);
    const ByteView shown = ByteView(traffic.wire).first(std::min(open, traffic.wire.size()));
    return fmt::format("{} ... ({} bytes)", hex(shown), traffic.wire.size());
}

std::string to_text(const Traffic& traffic) {
    return fmt::format("{} {} {}\n  {}\n", time_text(traffic.time), traffic.sender == Sender::kHost ? ">" : "<",
                       wire_text(traffic), traffic.words);
}

}  // namespace quorvel::sim
