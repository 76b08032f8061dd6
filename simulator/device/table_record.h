// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_TABLE_RECORD_H
#define QUORVEL_SIMULATOR_DEVICE_TABLE_RECORD_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/cards/action_codes.h"
#include "simulator/wire.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// The fields behind the key of a record of table 1, which makes one application known.
enum class RecordField {
    kAidSize,
    kAid,
    kType,
    kLabel,
    kStandard,
    kVersion1,
    kVersion2,
    kVersion3,
    kCountry,
    kCurrency,
    kExponent,
    kMerchant,
    kCategory,
    kTerminal,
    kCapabilities,
    kMoreCapabilities,
    kTerminalType,
    kDefaultCode,
    kDenialCode,
    kOnlineCode,
    kFloorLimit,
    kTransactionCategory,
    kContactlessZero,
    kContactlessMode,
    kContactlessLimit,
    kContactlessFloor,
    kContactlessVerification,
    kContactlessVersion,
    kReserved,
    kCertificateList,
    kAuthenticationList,
    kOfflineCodes,
    kContactlessDefaultCode,
    kContactlessDenialCode,
    kContactlessOnlineCode,
};

enum class RecordKind { kDigits, kHex, kText };

struct RecordRow {
    RecordField field;
    std::string_view name;
    size_t width;
    RecordKind kind;
    // The data object that has the field's value in a transaction, if there is one.
    Tag tag = 0;
};

inline constexpr auto kRecordLayout = std::to_array<RecordRow>({
    {RecordField::kAidSize, "bytes of the application identifier", 2, RecordKind::kDigits},
    {RecordField::kAid, "application identifier", 32, RecordKind::kHex},
    {RecordField::kType, "application type", 2, RecordKind::kDigits},
    {RecordField::kLabel, "label", 16, RecordKind::kText},
    {RecordField::kStandard, "standard", 2, RecordKind::kDigits},
    {RecordField::kVersion1, "application version 1", 4, RecordKind::kHex, 0x9F09},
    {RecordField::kVersion2, "application version 2", 4, RecordKind::kHex},
    {RecordField::kVersion3, "application version 3", 4, RecordKind::kHex},
    {RecordField::kCountry, "terminal country", 3, RecordKind::kDigits, 0x9F1A},
    {RecordField::kCurrency, "currency", 3, RecordKind::kDigits, 0x5F2A},
    {RecordField::kExponent, "currency exponent", 1, RecordKind::kDigits, 0x5F36},
    {RecordField::kMerchant, "merchant identifier", 15, RecordKind::kText, 0x9F16},
    {RecordField::kCategory, "merchant category", 4, RecordKind::kDigits, 0x9F15},
    {RecordField::kTerminal, "terminal identifier", 8, RecordKind::kText, 0x9F1C},
    {RecordField::kCapabilities, "terminal capabilities", 6, RecordKind::kHex, 0x9F33},
    {RecordField::kMoreCapabilities, "additional capabilities", 10, RecordKind::kHex, 0x9F40},
    {RecordField::kTerminalType, "terminal type", 2, RecordKind::kDigits, 0x9F35},
    {RecordField::kDefaultCode, "action code, default", 10, RecordKind::kHex},
    {RecordField::kDenialCode, "action code, denial", 10, RecordKind::kHex},
    {RecordField::kOnlineCode, "action code, online", 10, RecordKind::kHex},
    {RecordField::kFloorLimit, "floor limit", 8, RecordKind::kHex, 0x9F1B},
    {RecordField::kTransactionCategory, "transaction category", 1, RecordKind::kText, 0x9F53},
    {RecordField::kContactlessZero, "contactless, amount zero", 1, RecordKind::kDigits},
    {RecordField::kContactlessMode, "contactless, mode", 1, RecordKind::kDigits},
    {RecordField::kContactlessLimit, "contactless, transaction limit", 8, RecordKind::kHex},
    {RecordField::kContactlessFloor, "contactless, floor limit", 8, RecordKind::kHex},
    {RecordField::kContactlessVerification, "contactless, verification limit", 8, RecordKind::kHex},
    {RecordField::kContactlessVersion, "contactless, application version", 4, RecordKind::kHex},
    {RecordField::kReserved, "reserved", 1, RecordKind::kText},
    {RecordField::kCertificateList, "default TDOL", 40, RecordKind::kHex},
    {RecordField::kAuthenticationList, "default DDOL", 40, RecordKind::kHex},
    {RecordField::kOfflineCodes, "offline response codes", 8, RecordKind::kText},
    {RecordField::kContactlessDefaultCode, "contactless, action code, default", 10, RecordKind::kHex},
    {RecordField::kContactlessDenialCode, "contactless, action code, denial", 10, RecordKind::kHex},
    {RecordField::kContactlessOnlineCode, "contactless, action code, online", 10, RecordKind::kHex},
});
static_assert(std::ranges::is_sorted(kRecordLayout, std::ranges::less{}, &RecordRow::field)
                  && kRecordLayout.back().field == static_cast<RecordField>(kRecordLayout.size() - 1),
              "a row for each field, in their order");

// What a record says, as far as it goes: a field that is not there, is blank or cannot be read has no value, and
// whoever asks for it has a default.
class TableRecord {
public:
    TableRecord() = default;
    explicit TableRecord(ByteView body);

    [[nodiscard]] const std::optional<std::string>& text(RecordField field) const {
        return values_[static_cast<size_t>(field)];
    }
    // Hexadecimal digits as one number, such as a limit in cents.
    [[nodiscard]] std::optional<uint64_t> limit(RecordField field) const;
    [[nodiscard]] ActionCodes action_codes(bool contactless) const;
    // What the terminal tells of itself in a transaction with this application.
    [[nodiscard]] DataObjects objects() const;

    // The fields that are there and cannot be read.
    [[nodiscard]] const std::vector<std::string_view>& unreadable() const noexcept { return unreadable_; }

private:
    void read(const RecordRow& row, std::string value);

    std::array<std::optional<std::string>, kRecordLayout.size()> values_;
    std::vector<std::string_view> unreadable_;
};

}  // namespace quorvel::sim

#endif
