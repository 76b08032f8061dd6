// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/fields.h"

#include <algorithm>
#include <fmt/format.h>

namespace quorvel::wire {

namespace {

constexpr uint8_t kCarriageReturn = '\r';
constexpr uint8_t kLowestCharacter = 0x20;
constexpr uint8_t kHighestA = 0x7E;
constexpr uint8_t kHighestS = 0xFF;

constexpr bool is_digit(uint8_t c) { return c >= '0' && c <= '9'; }

// The protocol writes hexadecimal in capitals.
constexpr bool is_hex(uint8_t c) { return is_digit(c) || (c >= 'A' && c <= 'F'); }

constexpr uint8_t hex_value(uint8_t c) { return static_cast<uint8_t>(is_digit(c) ? c - '0' : c - 'A' + 10); }

size_t padding(std::string_view what, size_t used, size_t room) {
    if (used > room) {
        throw std::invalid_argument(fmt::format("{} of {} characters for a field of {}", what, used, room));
    }
    return room - used;
}

}  // namespace

ByteView Reader::take(std::string_view field, size_t count) {
    if (count > left_.size()) { refuse(field, fmt::format("{} bytes due, {} left", count, left_.size())); }
    const ByteView taken = left_.first(count);
    left_ = left_.subspan(count);
    return taken;
}

void Reader::refuse(std::string_view field, std::string_view fault) const {
    throw LayoutError(fmt::format("{}: {}: {}", what_, field, fault));
}

uint64_t Reader::within(std::string_view field, uint64_t value, Range range) const {
    if (value >= range.lowest && value <= range.highest) { return value; }
    if (range.lowest == range.highest) { refuse(field, fmt::format("{} instead of {}", value, range.lowest)); }
    refuse(field, fmt::format("{} is not from {} to {}", value, range.lowest, range.highest));
}

uint64_t Reader::n(std::string_view field, size_t digits) {
    uint64_t value = 0;
    for (const uint8_t c : take(field, digits)) {
        if (!is_digit(c)) { refuse(field, fmt::format("0x{:02X} is no digit", c)); }
        value = value * 10 + (c - uint64_t{'0'});
    }
    return value;
}

uint64_t Reader::n(std::string_view field, size_t digits, Range range) {
    return within(field, n(field, digits), range);
}

std::string Reader::text(std::string_view field, size_t width, uint8_t highest, Cr cr) {
    const ByteView taken = take(field, width);
    for (const uint8_t c : taken) {
        const bool valid = c == kCarriageReturn ? cr == Cr::kAllowed : c >= kLowestCharacter && c <= highest;
        if (!valid) { refuse(field, fmt::format("0x{:02X} is not allowed", c)); }
    }
    std::string text(taken.begin(), taken.end());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string Reader::a(std::string_view field, size_t width, Cr cr) { return text(field, width, kHighestA, cr); }

std::string Reader::s(std::string_view field, size_t width, Cr cr) { return text(field, width, kHighestS, cr); }

Bytes Reader::h(std::string_view field, size_t digits) {
    const ByteView taken = take(field, digits);
    if (digits % 2 != 0) { refuse(field, "an odd number of hexadecimal digits"); }
    Bytes bytes;
    for (size_t i = 0; i < taken.size(); i += 2) {
        for (const uint8_t c : taken.subspan(i, 2)) {
            if (!is_hex(c)) { refuse(field, fmt::format("0x{:02X} is no hexadecimal digit", c)); }
        }
        bytes.push_back(static_cast<uint8_t>(hex_value(taken[i]) << 4 | hex_value(taken[i + 1])));
    }
    return bytes;
}

uint32_t Reader::x(std::string_view field, size_t width) {
    uint32_t value = 0;
    for (const uint8_t byte : take(field, width)) { value = value << 8 | byte; }
    return value;
}

uint32_t Reader::x(std::string_view field, size_t width, Range range) {
    return static_cast<uint32_t>(within(field, x(field, width), range));
}

Bytes Reader::b(std::string_view field, size_t count) {
    const ByteView taken = take(field, count);
    return {taken.begin(), taken.end()};
}

Reader Reader::block(std::string_view field) {
    const auto length = static_cast<size_t>(n(field, 3));
    return {what_, take(field, length)};
}

Param Reader::param() {
    Param param;
    param.id = static_cast<uint16_t>(x("parameter id", 2));
    const std::string field = fmt::format("parameter 0x{:04X}", param.id);
    param.data = b(field, x(field, 2));
    return param;
}

std::vector<Param> Reader::params() {
    static constexpr std::string_view kFields[]{"CMD_LEN1", "CMD_LEN2"};
    std::vector<Param> params;
    for (const std::string_view field : kFields) {
        if (left() == 0) { break; }
        Reader inside = block(field);
        if (inside.left() == 0) { refuse(field, "a block without parameters"); }
        while (inside.left() != 0) { params.push_back(inside.param()); }
    }
    end();
    return params;
}

void Reader::end() const {
    if (!left_.empty()) { throw LayoutError(fmt::format("{}: {} bytes too many", what_, left_.size())); }
}

Writer& Writer::n(uint64_t value, size_t digits) {
    const std::string number = std::to_string(value);
    bytes_.insert(bytes_.end(), padding("a number", number.size(), digits), '0');
    append(bytes_, to_bytes(number));
    return *this;
}

Writer& Writer::a(std::string_view text, size_t width) {
    const bool printable = std::ranges::all_of(text, [](char c) { return c >= 0x20 && c <= 0x7E; });
    if (!printable) { throw std::invalid_argument(fmt::format("'{}' in an A field", text)); }
    return s(text, width);
}

Writer& Writer::s(std::string_view text, size_t width) {
    const size_t spaces = padding(fmt::format("'{}'", text), text.size(), width);
    append(bytes_, to_bytes(text));
    bytes_.insert(bytes_.end(), spaces, ' ');
    return *this;
}

Writer& Writer::h(ByteView bytes, size_t digits) {
    const size_t pairs = padding("bytes", bytes.size() * 2, digits) / 2;
    for (size_t i = 0; i < pairs; ++i) { append(bytes_, to_bytes("30")); }
    for (const uint8_t byte : bytes) { append(bytes_, to_bytes(fmt::format("{:02X}", byte))); }
    return *this;
}

Writer& Writer::x(uint32_t value, size_t width) {
    if (width < sizeof value && value >> (8 * width) != 0) {
        throw std::invalid_argument(fmt::format("{} for a field of {} bytes", value, width));
    }
    for (size_t i = width; i > 0; --i) { bytes_.push_back(static_cast<uint8_t>(value >> (8 * (i - 1)))); }
    return *this;
}

Writer& Writer::b(ByteView bytes) {
    append(bytes_, bytes);
    return *this;
}

Writer& Writer::param(const Param& param) {
    return x(param.id, 2).x(static_cast<uint32_t>(param.data.size()), 2).b(param.data);
}

}  // namespace quorvel::wire
