// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_WIRE_H
#define QUORVEL_ABECS_COMM_WIRE_H

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

// Read time-outs, in tenths of a second. The port counts them anew for every byte.
inline constexpr uint8_t kPurgeWait = 5;            // so long silent, the line counts as empty
inline constexpr uint8_t kByteWait = 20;            // for an answer byte, and between the bytes of a frame
inline constexpr uint8_t kResponseWait = 100;       // for the first byte of a response
inline constexpr uint8_t kPolledResponseWait = 20;  // the same while blocked: the caller polls
static_assert(kPurgeWait < kByteWait, "what is still arriving must not outlast a purge");

inline constexpr int32_t kBaudRate = 19200;
inline constexpr int32_t kDataBits = 8;

}  // namespace abecs

#endif
