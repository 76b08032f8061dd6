// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_EMV_H
#define QUORVEL_SIMULATOR_CARDS_EMV_H

#include <cstddef>
#include <cstdint>

#include "simulator/wire.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// The data objects that the PIN pad itself reads or sets.
namespace tag {
inline constexpr Tag aid = 0x4F;
inline constexpr Tag label = 0x50;
inline constexpr Tag currency = 0x5F2A;
inline constexpr Tag fileName = 0x84;
inline constexpr Tag command = 0x86;
inline constexpr Tag responseCode = 0x8A;
inline constexpr Tag terminalResults = 0x95;
inline constexpr Tag date = 0x9A;
inline constexpr Tag type = 0x9C;
inline constexpr Tag amount = 0x9F02;
inline constexpr Tag cashback = 0x9F03;
inline constexpr Tag scriptId = 0x9F18;
inline constexpr Tag time = 0x9F21;
inline constexpr Tag cryptogram = 0x9F26;
inline constexpr Tag cryptogramInformation = 0x9F27;
inline constexpr Tag verificationResults = 0x9F34;
inline constexpr Tag counter = 0x9F36;
inline constexpr Tag unpredictableNumber = 0x9F37;
inline constexpr Tag scriptResults = 0x9F5B;
// Issuer scripts, for before and after the second decision.
inline constexpr Tag earlyScript = 0x71;
inline constexpr Tag lateScript = 0x72;
}  // namespace tag

// A bit of the terminal verification results: the byte, counted from 1 as in its description, and the bit's mask.
struct TerminalResult {
    size_t byte;
    uint8_t mask;
};

namespace terminal_result {
inline constexpr TerminalResult exceptionList{1, 0x10};
inline constexpr TerminalResult verificationFailed{3, 0x80};
inline constexpr TerminalResult pinTriesExceeded{3, 0x20};
inline constexpr TerminalResult onlinePinEntered{3, 0x04};
inline constexpr TerminalResult floorLimitExceeded{4, 0x80};
inline constexpr TerminalResult selectedAtRandom{4, 0x10};
inline constexpr TerminalResult earlyScriptFailed{5, 0x20};
inline constexpr TerminalResult lateScriptFailed{5, 0x10};
}  // namespace terminal_result

void set(DataObjects& objects, TerminalResult result);

// Two decimal digits a byte.
[[nodiscard]] Bytes bcd(uint64_t number, size_t bytes);
[[nodiscard]] uint64_t from_bcd(ByteView digits);

// What a terminal of this kind tells of itself.
[[nodiscard]] DataObjects terminal_objects();

enum class Cryptogram : uint8_t { declined = 0x00, approved = 0x40, online = 0x80 };

// As the chip answers GENERATE AC: the kind, and a cryptogram over the transaction's data under a key for tests.
void generate(DataObjects& objects, Cryptogram kind);

}  // namespace quorvel::sim

#endif
