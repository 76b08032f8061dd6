// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_EMV_H
#define QUORVEL_SIMULATOR_CARDS_EMV_H

#include <cstddef>
#include <cstdint>

#include "simulator/keys/random.h"
#include "simulator/wire.h"
#include "wire/tag.h"

namespace quorvel::sim {

// A bit of the terminal verification results: the byte, counted from 1 as in its description, and the bit's mask.
struct TerminalResult {
    size_t byte;
    uint8_t mask;
};

namespace terminal_result {
inline constexpr TerminalResult kExceptionList{1, 0x10};
inline constexpr TerminalResult kVerificationFailed{3, 0x80};
inline constexpr TerminalResult kPinTriesExceeded{3, 0x20};
inline constexpr TerminalResult kOnlinePinEntered{3, 0x04};
inline constexpr TerminalResult kFloorLimitExceeded{4, 0x80};
inline constexpr TerminalResult kSelectedAtRandom{4, 0x10};
inline constexpr TerminalResult kEarlyScriptFailed{5, 0x20};
inline constexpr TerminalResult kLateScriptFailed{5, 0x10};
}  // namespace terminal_result

void set(DataObjects& objects, TerminalResult result);

// Two decimal digits a byte.
[[nodiscard]] Bytes bcd(uint64_t number, size_t bytes);
[[nodiscard]] uint64_t from_bcd(ByteView digits);

// What a terminal of this kind tells of itself.
[[nodiscard]] DataObjects terminal_objects();

enum class Cryptogram : uint8_t { kDeclined = 0x00, kApproved = 0x40, kOnline = 0x80 };

// As the chip answers GENERATE AC: the kind, and a cryptogram over the transaction's data under a key for tests.
void generate(DataObjects& objects, Cryptogram kind, Random& random);

}  // namespace quorvel::sim

#endif
