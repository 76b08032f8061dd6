// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_WIRE_H
#define QUORVEL_ABECS_COMM_WIRE_H

#include <chrono>
#include <cstdint>

// Every number that the link puts on the line or waits by.
namespace abecs {

// ASCII control bytes, with the meaning that the protocol gives them.
inline constexpr uint8_t kEot = 0x04;  // answers CAN
inline constexpr uint8_t kAck = 0x06;  // frame accepted
inline constexpr uint8_t kDc2 = 0x12;  // right after SYN: the frame is encrypted
inline constexpr uint8_t kDc3 = 0x13;  // escape: the next byte is a data byte plus kEscapeOffset
inline constexpr uint8_t kNak = 0x15;  // frame rejected, send it again
inline constexpr uint8_t kSyn = 0x16;  // start of frame
inline constexpr uint8_t kEtb = 0x17;  // end of data, the CRC follows
inline constexpr uint8_t kCan = 0x18;  // abort the command in progress

// Moves each escaped byte out of the control characters.
inline constexpr uint8_t kEscapeOffset = 0x20;

// How often a frame or a CAN is tried in all.
inline constexpr int kAttempts = 3;

// How long the link waits.
inline constexpr std::chrono::milliseconds kByteWait{2000};       // for an answer byte, between a frame's bytes
inline constexpr std::chrono::milliseconds kResponseWait{10000};  // for the first byte of a response
inline constexpr std::chrono::milliseconds kPollTime{2000};  // the same while blocked, unless the caller says otherwise
inline constexpr std::chrono::milliseconds kPurgeSilence{500};  // so long silent, the line counts as empty

// What a line that never falls silent can cost at most. The longest frame takes about 2 s at the link's speed.
inline constexpr std::chrono::milliseconds kFrameLimit{30000};  // from a frame's SYN to its end
inline constexpr std::chrono::milliseconds kPurgeLimit{3000};
inline constexpr std::chrono::milliseconds kPurgePause{20};  // from one look at a busy line to the next
static_assert(kPurgeSilence < kByteWait, "what is still arriving must not outlast a purge");

inline constexpr int32_t kBaudRate = 19200;
inline constexpr int32_t kDataBits = 8;

}  // namespace abecs

#endif
