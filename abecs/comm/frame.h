// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_FRAME_H
#define QUORVEL_ABECS_COMM_FRAME_H

#include <cstdint>
#include <span>

#include "abecs/comm/crc16.h"
#include "abecs/comm/wire.h"

// A frame is SYN, DC2 if it is encrypted, the data with its escapes, ETB and the CRC, most significant byte first and
// never escaped. The CRC covers DC2, the data before escaping, and ETB. Neither class below does any I/O.
namespace abecs {

[[nodiscard]] constexpr bool needs_escape(uint8_t byte) { return byte == kDc3 || byte == kSyn || byte == kEtb; }

// Turns a packet's bytes into the frame's, which go to `frame`, one after the other.
class FrameEncoder {
public:
    explicit constexpr FrameEncoder(uint8_t* frame) : next_(frame) {}

    constexpr void begin(bool encrypted) {
        crc_ = kCrc16.initial;
        emit(kSyn);
        if (encrypted) { emit(cover(kDc2)); }
    }

    constexpr void data(std::span<const uint8_t> bytes) {
        // Bytes written through a pointer may be anything's, members included: these two stay in registers.
        uint16_t crc = crc_;
        uint8_t* next = next_;
        for (uint8_t byte : bytes) {
            crc = crc16_update(crc, byte);
            if (needs_escape(byte)) {
                *next++ = kDc3;
                byte = static_cast<uint8_t>(byte + kEscapeOffset);
            }
            *next++ = byte;
        }
        crc_ = crc;
        next_ = next;
    }

    // Returns the end of the frame.
    [[nodiscard]] constexpr uint8_t* end() {
        emit(cover(kEtb));
        const uint16_t crc = crc_;
        emit(static_cast<uint8_t>(crc >> 8));
        emit(static_cast<uint8_t>(crc));
        return next_;
    }

private:
    constexpr uint8_t cover(uint8_t byte) {
        crc_ = crc16_update(crc_, byte);
        return byte;
    }

    constexpr void emit(uint8_t byte) { *next_++ = byte; }

    uint8_t* next_;
    uint16_t crc_ = kCrc16.initial;
};

// Takes a frame apart, fed byte by byte. After the end of a frame it waits for the next one.
class FrameDecoder {
public:
    enum class Event : uint8_t {
        kPending,  // nothing to tell yet
        kNotSyn,   // the byte does not start a frame
        kData,     // data() is the next byte of the packet
        kGood,     // the frame ended and its CRC is right
        kBad,      // the frame ended and its CRC is wrong
    };

    [[nodiscard]] constexpr Event feed(uint8_t byte) {
        switch (state_) {
            case State::kIdle:
                return start(byte);
            case State::kFirst:
                if (byte == kDc2) { return mark_encrypted(); }
                [[fallthrough]];
            case State::kData:
                return content(byte);
            case State::kEscaped:
                return take(static_cast<uint8_t>(byte - kEscapeOffset));
            case State::kCrcHigh:
                received_ = static_cast<uint16_t>(byte << 8);
                return go(State::kCrcLow);
            case State::kCrcLow:
                received_ = static_cast<uint16_t>(received_ | byte);
                state_ = State::kIdle;
                return received_ == crc_ ? Event::kGood : Event::kBad;
        }
        return Event::kPending;
    }

    [[nodiscard]] constexpr uint8_t data() const { return data_; }
    [[nodiscard]] constexpr bool encrypted() const { return encrypted_; }

private:
    enum class State : uint8_t { kIdle, kFirst, kData, kEscaped, kCrcHigh, kCrcLow };

    constexpr Event go(State state) {
        state_ = state;
        return Event::kPending;
    }

    constexpr Event start(uint8_t byte) {
        if (byte != kSyn) { return Event::kNotSyn; }
        crc_ = kCrc16.initial;
        encrypted_ = false;
        return go(State::kFirst);
    }

    constexpr Event mark_encrypted() {
        crc_ = crc16_update(crc_, kDc2);
        encrypted_ = true;
        return go(State::kData);
    }

    // A SYN in here is data like any other: a peer that escapes as it must never sends one, and the CRC tells.
    constexpr Event content(uint8_t byte) {
        if (byte == kDc3) { return go(State::kEscaped); }
        if (byte != kEtb) { return take(byte); }
        crc_ = crc16_update(crc_, kEtb);
        return go(State::kCrcHigh);
    }

    constexpr Event take(uint8_t byte) {
        data_ = byte;
        crc_ = crc16_update(crc_, byte);
        state_ = State::kData;
        return Event::kData;
    }

    State state_ = State::kIdle;
    uint16_t crc_ = kCrc16.initial;
    uint16_t received_ = 0;
    uint8_t data_ = 0;
    bool encrypted_ = false;
};

}  // namespace abecs

#endif
