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
// Of the application.
inline constexpr Tag kAid = 0x4F, kLabel = 0x50, kFileName = 0x84;
// Of the transaction.
inline constexpr Tag kDate = 0x9A, kTime = 0x9F21, kType = 0x9C, kCurrency = 0x5F2A, kAmount = 0x9F02,
                     kCashback = 0x9F03, kUnpredictableNumber = 0x9F37, kTerminalResults = 0x95,
                     kVerificationResults = 0x9F34;
// Of its decisions.
inline constexpr Tag kCryptogram = 0x9F26, kCryptogramInformation = 0x9F27, kCounter = 0x9F36, kResponseCode = 0x8A;
// Of the issuer's scripts, which are for before and after the second decision.
inline constexpr Tag kEarlyScript = 0x71, kLateScript = 0x72, kScriptId = 0x9F18, kCommand = 0x86,
                     kScriptResults = 0x9F5B;
}  // namespace tag

// "Application label"; empty for a tag that is not known.
[[nodiscard]] std::string_view tag_name(Tag tag) noexcept;

// Its item is called by the tag, "9F02"; of a tag that is not known it is withheld.
[[nodiscard]] Item data_object(Tag tag, ByteView value);

}  // namespace quorvel::wire

#endif
