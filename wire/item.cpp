// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/item.h"

#include <algorithm>
#include <utility>

#include "wire/fields.h"
#include "wire/tag.h"

namespace quorvel::wire {

namespace {

constexpr bool is_digit(uint8_t c) { return c >= '0' && c <= '9'; }
constexpr bool is_hex(uint8_t c) { return is_digit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
constexpr bool is_text(uint8_t c) { return c >= 0x20 || c == '\r'; }

bool fits(const Content& content, ByteView value) {
    const size_t width = content.width;
    if (width != 0 && value.size() > width) { return false; }
    switch (content.type) {
        case Type::kDigits:
            return (width == 0 || value.size() == width) && std::ranges::all_of(value, is_digit);
        case Type::kText:
            return std::ranges::all_of(value, is_text);
        case Type::kHex:
            return std::ranges::all_of(value, is_hex);
        default:
            return true;
    }
}

// What is no list of data objects has no parts and is withheld.
void take_apart(Item& item) {
    try {
        for (const auto& [tag, value] : decode_list(item.value)) { item.parts.push_back(data_object(tag, value)); }
    } catch (const LayoutError&) {
        item.parts.clear();
        item.privacy = Privacy::kWithheld;
    }
}

}  // namespace

Item item(std::string name, uint32_t id, ByteView value, const Content& content) {
    Item item{std::move(name), id, Bytes(value.begin(), value.end()), content.type, content.privacy};
    if (!fits(content, value)) { item.privacy = Privacy::kWithheld; }
    if (item.type == Type::kObjects && item.privacy != Privacy::kWithheld) { take_apart(item); }
    return item;
}

bool is_open(const Item& item) noexcept {
    return item.privacy == Privacy::kShown && std::ranges::all_of(item.parts, is_open);
}

uint64_t number_of(ByteView value) noexcept {
    uint64_t number = 0;
    for (const uint8_t byte : value) { number = number << 8 | byte; }
    return number;
}

}  // namespace quorvel::wire
