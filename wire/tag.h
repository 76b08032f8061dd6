// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_TAG_H
#define QUORVEL_WIRE_TAG_H

#include <string_view>

#include "wire/item.h"
#include "wire/tlv.h"

namespace quorvel::wire {

// The data objects that the programs here read or set themselves.
namespace tag {
inline constexpr Tag kAid = 0x4F;
inline constexpr Tag kLabel = 0x50;
inline constexpr Tag kCurrency = 0x5F2A;
inline constexpr Tag kFileName = 0x84;
inline constexpr Tag kCommand = 0x86;
inline constexpr Tag kResponseCode = 0x8A;
inline constexpr Tag kTerminalResults = 0x95;
inline constexpr Tag kDate = 0x9A;
inline constexpr Tag kType = 0x9C;
inline constexpr Tag kAmount = 0x9F02;
inline constexpr Tag kCashback = 0x9F03;
inline constexpr Tag kScriptId = 0x9F18;
inline constexpr Tag kTime = 0x9F21;
inline constexpr Tag kCryptogram = 0x9F26;
inline constexpr Tag kCryptogramInformation = 0x9F27;
inline constexpr Tag kVerificationResults = 0x9F34;
inline constexpr Tag kCounter = 0x9F36;
inline constexpr Tag kUnpredictableNumber = 0x9F37;
inline constexpr Tag kScriptResults = 0x9F5B;
// Issuer scripts, for before and after the second decision.
inline constexpr Tag kEarlyScript = 0x71;
inline constexpr Tag kLateScript = 0x72;
}  // namespace tag

// "Application label"; empty for a tag that is not known.
[[nodiscard]] std::string_view tag_name(Tag tag) noexcept;

// Its item is called by the tag, "9F02"; of a tag that is not known it is withheld.
[[nodiscard]] Item data_object(Tag tag, ByteView value);

}  // namespace quorvel::wire

#endif
