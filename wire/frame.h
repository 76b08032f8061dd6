// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_FRAME_H
#define QUORVEL_WIRE_FRAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "wire/bytes.h"

namespace quorvel::wire {

namespace control {
inline constexpr uint8_t kEot = 0x04;
inline constexpr uint8_t kAck = 0x06;
inline constexpr uint8_t kDc2 = 0x12;
inline constexpr uint8_t kDc3 = 0x13;
inline constexpr uint8_t kNak = 0x15;
inline constexpr uint8_t kSyn = 0x16;
inline constexpr uint8_t kEtb = 0x17;
inline constexpr uint8_t kCan = 0x18;
}  // namespace control

// The largest command has two blocks of 999 bytes, 2007 bytes in all; enciphered, with its head and padding, 2016.
inline constexpr size_t kMaxFrameData = 2048;

struct Frame {
    bool encrypted = false;
    Bytes data;

    bool operator==(const Frame&) const = default;
};

[[nodiscard]] Bytes encode(const Frame& frame);

// One thing that the host sent.
struct Reception {
    enum class Kind {
        kFrame,        // a good frame
        kDamaged,      // a whole frame that must be refused
        kInterrupted,  // the beginning of a frame that another one cut off
        kByte,         // one byte outside frames
    };

    Kind kind = Kind::kByte;
    Frame frame;
    uint8_t byte = 0;
    std::string fault;  // what is wrong with a damaged or interrupted frame
    Bytes wire;         // the bytes as they came
};

// Takes the line's bytes one by one and tells what they make. Outside frames every byte stands for itself.
class FrameDecoder {
public:
    // What this byte completes, if anything.
    [[nodiscard]] std::optional<Reception> feed(uint8_t byte);

    [[nodiscard]] bool in_frame() const noexcept { return state_ != State::kOutside; }

    // Ends a frame that does not go on.
    [[nodiscard]] Reception give_up();

private:
    enum class State { kOutside, kFirst, kData, kEscaped, kCrcHigh, kCrcLow };

    std::optional<Reception> in_data(uint8_t byte);
    std::optional<Reception> restart();
    void store(uint8_t byte);
    void unescape(uint8_t byte);
    void blame(std::string fault);
    Reception check();
    Reception finish(Reception::Kind kind, uint8_t byte = 0);

    State state_ = State::kOutside;
    Frame frame_;
    std::string fault_;
    uint16_t crc_ = 0;
    Bytes wire_;
};

}  // namespace quorvel::wire

#endif
