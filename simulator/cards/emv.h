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
inline constexpr TerminalResult kExpired{2, 0x40};
inline constexpr TerminalResult kNotYetEffective{2, 0x20};
inline constexpr TerminalResult kServiceNotAllowed{2, 0x10};
inline constexpr TerminalResult kNewCard{2, 0x08};
inline constexpr TerminalResult kVerificationFailed{3, 0x80};
inline constexpr TerminalResult kUnknownVerification{3, 0x40};
inline constexpr TerminalResult kPinTriesExceeded{3, 0x20};
inline constexpr TerminalResult kPinNotEntered{3, 0x08};
inline constexpr TerminalResult kOnlinePinEntered{3, 0x04};
inline constexpr TerminalResult kFloorLimitExceeded{4, 0x80};
inline constexpr TerminalResult kLowerLimitExceeded{4, 0x40};
inline constexpr TerminalResult kUpperLimitExceeded{4, 0x20};
inline constexpr TerminalResult kSelectedAtRandom{4, 0x10};
inline constexpr TerminalResult kMustGoOnline{4, 0x08};
inline constexpr TerminalResult kEarlyScriptFailed{5, 0x20};
inline constexpr TerminalResult kLateScriptFailed{5, 0x10};
}  // namespace terminal_result

// What the kernel asks of a card and of the terminal, beside what hosts ask for.
namespace card_tag {
inline constexpr Tag kExpiry = 0x5F24;
inline constexpr Tag kEffective = 0x5F25;
inline constexpr Tag kIssuerCountry = 0x5F28;
inline constexpr Tag kVerificationList = 0x8E;
inline constexpr Tag kUsageControl = 0x9F07;
inline constexpr Tag kIssuerDefault = 0x9F0D;
inline constexpr Tag kIssuerDenial = 0x9F0E;
inline constexpr Tag kIssuerOnline = 0x9F0F;
inline constexpr Tag kLastOnlineCounter = 0x9F13;
inline constexpr Tag kLowerOfflineLimit = 0x9F14;
inline constexpr Tag kTerminalCountry = 0x9F1A;
inline constexpr Tag kUpperOfflineLimit = 0x9F23;
inline constexpr Tag kCapabilities = 0x9F33;
inline constexpr Tag kTerminalType = 0x9F35;
inline constexpr Tag kCurrency = 0x9F42;
inline constexpr Tag kTerminalQualifiers = 0x9F66;
}  // namespace card_tag

// Empty, or `otherwise`, for an object that is not there.
[[nodiscard]] Bytes value_of(const DataObjects& objects, Tag tag, const Bytes& otherwise = {});

void set(DataObjects& objects, TerminalResult result);

// Two decimal digits a byte.
[[nodiscard]] Bytes bcd(uint64_t number, size_t bytes);
[[nodiscard]] uint64_t from_bcd(ByteView digits);
// The bytes as one number, the highest first.
[[nodiscard]] uint64_t number(ByteView bytes);
[[nodiscard]] Bytes two_bytes(unsigned number);

// What a terminal of this kind tells of itself.
[[nodiscard]] DataObjects terminal_objects();

enum class Cryptogram : uint8_t { kDeclined = 0x00, kApproved = 0x40, kOnline = 0x80 };

// As the chip answers GENERATE AC: the kind, and a cryptogram over the transaction's data under a key for tests.
void generate(DataObjects& objects, Cryptogram kind, Random& random);

}  // namespace quorvel::sim

#endif
