// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/table_record.h"

#include <charconv>
#include <utility>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr std::string_view kDecimal = "0123456789";
constexpr std::string_view kHexadecimal = "0123456789ABCDEFabcdef";

// A text ends with the record; digits that it breaks off in stand for nothing.
bool is_whole(const RecordRow& row, std::string_view value) {
    return row.kind == RecordKind::kText || value.size() == row.width;
}

bool is_readable(const RecordRow& row, std::string_view value) {
    if (row.kind == RecordKind::kText) { return true; }
    const std::string_view allowed = row.kind == RecordKind::kDigits ? kDecimal : kHexadecimal;
    return value.find_first_not_of(allowed) == std::string_view::npos;
}

Bytes object_of(const RecordRow& row, const std::string& value) {
    if (row.kind == RecordKind::kText) { return to_bytes(value); }
    return from_hex(value.size() % 2 == 0 ? value : "0" + value);
}

}  // namespace

TableRecord::TableRecord(ByteView body) {
    for (const RecordRow& row : kRecordLayout) {
        const ByteView bytes = body.first(std::min(row.width, body.size()));
        body = body.subspan(bytes.size());
        read(row, {bytes.begin(), bytes.end()});
    }
}

void TableRecord::read(const RecordRow& row, std::string value) {
    if (value.find_first_not_of(' ') == std::string::npos || !is_whole(row, value)) { return; }
    if (!is_readable(row, value)) { return unreadable_.push_back(row.name); }
    values_[static_cast<size_t>(row.field)] = std::move(value);
}

std::optional<uint64_t> TableRecord::limit(RecordField field) const {
    static constexpr int kBase = 16;
    const auto& digits = text(field);
    if (!digits) { return std::nullopt; }
    uint64_t value = 0;
    std::from_chars(digits->data(), digits->data() + digits->size(), value, kBase);
    return value;
}

ActionCodes TableRecord::action_codes(bool contactless) const {
    const auto code = [&](RecordField chip, RecordField antenna) {
        const auto& digits = text(contactless ? antenna : chip);
        return digits ? from_hex(*digits) : Bytes();
    };
    return {.denial = code(RecordField::kDenialCode, RecordField::kContactlessDenialCode),
            .online = code(RecordField::kOnlineCode, RecordField::kContactlessOnlineCode),
            .otherwise = code(RecordField::kDefaultCode, RecordField::kContactlessDefaultCode)};
}

DataObjects TableRecord::objects() const {
    DataObjects objects;
    for (const RecordRow& row : kRecordLayout) {
        if (const auto& value = text(row.field); row.tag != 0 && value) { objects[row.tag] = object_of(row, *value); }
    }
    return objects;
}

}  // namespace quorvel::sim
