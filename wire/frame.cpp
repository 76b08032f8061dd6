// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/frame.h"

#include <fmt/format.h>
#include <utility>

#include "wire/crc.h"

namespace quorvel::wire {

namespace {

constexpr uint8_t kEscapeShift = 0x20;

constexpr bool needs_escape(uint8_t byte) {
    return byte == control::kDc3 || byte == control::kSyn || byte == control::kEtb;
}

// Covers the data as it was before stuffing and the ETB behind it, in an encrypted frame the DC2 before it too.
uint16_t frame_crc(const Frame& frame) {
    static constexpr uint8_t kBefore[]{control::kDc2};
    static constexpr uint8_t kAfter[]{control::kEtb};
    const uint16_t crc = frame.encrypted ? crc16(kBefore) : uint16_t{0};
    return crc16(kAfter, crc16(frame.data, crc));
}

}  // namespace

Bytes encode(const Frame& frame) {
    Bytes wire{control::kSyn};
    if (frame.encrypted) { wire.push_back(control::kDc2); }
    for (const uint8_t byte : frame.data) {
        if (needs_escape(byte)) { wire.push_back(control::kDc3); }
        wire.push_back(needs_escape(byte) ? static_cast<uint8_t>(byte + kEscapeShift) : byte);
    }
    wire.push_back(control::kEtb);
    const uint16_t crc = frame_crc(frame);
    wire.push_back(static_cast<uint8_t>(crc >> 8));
    wire.push_back(static_cast<uint8_t>(crc & 0xFF));
    return wire;
}

std::optional<Reception> FrameDecoder::feed(uint8_t byte) {
    wire_.push_back(byte);
    switch (state_) {
        case State::kOutside:
            if (byte != control::kSyn) { return finish(Reception::Kind::kByte, byte); }
            state_ = State::kFirst;
            return std::nullopt;
        case State::kFirst:
            state_ = State::kData;
            frame_.encrypted = byte == control::kDc2;
            return frame_.encrypted ? std::nullopt : in_data(byte);
        case State::kData:
            return in_data(byte);
        case State::kEscaped:
            state_ = State::kData;
            if (needs_escape(byte)) {
                // The escape stands alone: what follows keeps its meaning, so that the frame still ends.
                blame("DC3 before a control byte");
                return in_data(byte);
            }
            unescape(byte);
            return std::nullopt;
        case State::kCrcHigh:
            crc_ = static_cast<uint16_t>(byte << 8);
            state_ = State::kCrcLow;
            return std::nullopt;
        case State::kCrcLow:
            crc_ = static_cast<uint16_t>(crc_ | byte);
            return check();
    }
    return std::nullopt;
}

Reception FrameDecoder::give_up() {
    blame("the frame does not go on");
    return finish(Reception::Kind::kDamaged);
}

std::optional<Reception> FrameDecoder::in_data(uint8_t byte) {
    switch (byte) {
        case control::kSyn:
            return restart();
        case control::kEtb:
            state_ = State::kCrcHigh;
            break;
        case control::kDc3:
            state_ = State::kEscaped;
            break;
        default:
            store(byte);
    }
    return std::nullopt;
}

// A SYN cannot stand inside a frame: whoever sends one has begun anew.
std::optional<Reception> FrameDecoder::restart() {
    wire_.pop_back();
    blame("SYN inside a frame");
    Reception cutOff = finish(Reception::Kind::kInterrupted);
    wire_.push_back(control::kSyn);
    state_ = State::kFirst;
    return cutOff;
}

void FrameDecoder::store(uint8_t byte) {
    if (frame_.data.size() == kMaxFrameData) { return blame(fmt::format("more than {} data bytes", kMaxFrameData)); }
    frame_.data.push_back(byte);
}

void FrameDecoder::unescape(uint8_t byte) {
    const auto plain = static_cast<uint8_t>(byte - kEscapeShift);
    if (!needs_escape(plain)) { blame(fmt::format("0x{:02X} escaped without need", plain)); }
    store(plain);
}

void FrameDecoder::blame(std::string fault) {
    if (fault_.empty()) { fault_ = std::move(fault); }
}

Reception FrameDecoder::check() {
    const uint16_t due = frame_crc(frame_);
    if (crc_ != due) { blame(fmt::format("bad CRC: 0x{:04X} received, 0x{:04X} due", crc_, due)); }
    return finish(fault_.empty() ? Reception::Kind::kFrame : Reception::Kind::kDamaged);
}

Reception FrameDecoder::finish(Reception::Kind kind, uint8_t byte) {
    state_ = State::kOutside;
    return {.kind = kind,
            .frame = std::exchange(frame_, {}),
            .byte = byte,
            .fault = std::exchange(fault_, {}),
            .wire = std::exchange(wire_, {})};
}

}  // namespace quorvel::wire
