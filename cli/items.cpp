// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/items.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "cli/emv.h"
#include "wire/hex.h"
#include "wire/param_id.h"

namespace quorvel::cli {

namespace {

std::string trimmed(std::span<const uint8_t> bytes) {
    const std::string text(bytes.begin(), bytes.end());
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool is_printable(std::span<const uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](uint8_t c) { return c >= 0x20 && c < 0x7F; });
}

}  // namespace

// Who reads the card may see what is on it, the number masked.
Value value_of(const wire::Item& item) {
    const std::string digits = wire::to_hex(item.value);
    if (item.privacy == wire::Privacy::kWithheld) {
        return Secret{is_printable(item.value) ? trimmed(item.value) : digits};
    }
    switch (item.type) {
        case wire::Type::kNumber:
            return wire::number_of(item.value);
        case wire::Type::kPan:
            return Pan{trimmed(item.value)};
        case wire::Type::kPackedPan:
            return Pan{digits.substr(0, digits.find_last_not_of('F') + 1)};
        case wire::Type::kObjects:
            return emv_fields(item.parts);
        case wire::Type::kBytes:
            return digits;
        default:
            return trimmed(item.value);
    }
}

std::optional<uint16_t> item_id(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (upper.starts_with("0X")) {
        uint16_t id = 0;
        const auto [end, error] = std::from_chars(upper.data() + 2, upper.data() + upper.size(), id, 16);
        if (error == std::errc() && end == upper.data() + upper.size()) { return id; }
        return std::nullopt;
    }
    if (!upper.starts_with("PP_")) { upper.insert(0, "PP_"); }
    if (const auto id = wire::find_param(upper)) { return id; }
    for (const uint16_t family :
         {wire::pp::kKsnDesPin, wire::pp::kKsnTdesPin, wire::pp::kKsnTdesData, wire::pp::kTabVer}) {
        for (uint16_t i = 0; i < wire::pp::kFamilySize; ++i) {
            const auto id = static_cast<uint16_t>(family + i);
            if (wire::param_name(id) == upper) { return id; }
        }
    }
    return std::nullopt;
}

Value item_value(const quorvel::Items& items, uint16_t id) {
    const auto bytes = items.bytes(id);
    return bytes ? value_of(wire::param_item(id, *bytes)) : Value("none");
}

void add_item(Group& to, std::string label, const quorvel::Items& items, uint16_t id) {
    if (!items.has(id)) { return; }
    Value item = item_value(items, id);
    const auto* group = std::get_if<Group>(&item.data);
    if (group == nullptr || !group->empty()) { to.push_back({std::move(label), std::move(item)}); }
}

}  // namespace quorvel::cli
