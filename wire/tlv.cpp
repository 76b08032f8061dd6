// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/tlv.h"

#include <fmt/format.h>

#include "wire/fields.h"

namespace quorvel::wire {

namespace {

constexpr uint8_t kLongTag = 0x1F;
// More bytes follow: of a tag another one, of a length as many as the other bits say.
constexpr uint8_t kMore = 0x80;
constexpr uint32_t kMostLengthBytes = 2;

void append_tag(Bytes& to, Tag tag) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        if (tag >> shift != 0) { to.push_back(static_cast<uint8_t>(tag >> shift)); }
    }
}

void append_length(Bytes& to, size_t length) {
    const bool two = length > UINT8_MAX;
    if (length >= kMore) { to.push_back(two ? kMore | 2U : kMore | 1U); }
    if (two) { to.push_back(static_cast<uint8_t>(length >> 8)); }
    to.push_back(static_cast<uint8_t>(length));
}

Tag next_tag(Reader& reader) {
    Tag tag = reader.x("tag", 1);
    if ((tag & kLongTag) != kLongTag) { return tag; }
    do {
        if (tag > UINT32_MAX >> 8) { throw LayoutError("tags: a tag of more than four bytes"); }
        tag = tag << 8 | reader.x("tag", 1);
    } while ((tag & kMore) != 0);
    return tag;
}

size_t next_length(Reader& reader) {
    const uint32_t first = reader.x("length", 1);
    if (first < kMore) { return first; }
    const uint32_t bytes = first - kMore;
    if (bytes == 0 || bytes > kMostLengthBytes) { throw LayoutError("tags: a length of too many bytes"); }
    return reader.x("length", bytes);
}

}  // namespace

std::vector<Tag> split_tags(ByteView list) {
    std::vector<Tag> tags;
    for (Reader reader("tags", list); reader.left() != 0;) { tags.push_back(next_tag(reader)); }
    return tags;
}

std::vector<std::pair<Tag, Bytes>> decode_list(ByteView encoded) {
    std::vector<std::pair<Tag, Bytes>> objects;
    for (Reader reader("tags", encoded); reader.left() != 0;) {
        const Tag tag = next_tag(reader);
        const size_t length = next_length(reader);
        objects.emplace_back(tag, reader.b(fmt::format("{:X}", tag), length));
    }
    return objects;
}

DataObjects decode(ByteView encoded) {
    DataObjects objects;
    for (auto& [tag, value] : decode_list(encoded)) { objects[tag] = std::move(value); }
    return objects;
}

Bytes encode(const DataObjects& objects, const std::vector<Tag>& tags) {
    Bytes encoded;
    for (const Tag tag : tags) {
        const auto found = objects.find(tag);
        if (found == objects.end()) { continue; }
        const Bytes& value = found->second;
        append_tag(encoded, tag);
        append_length(encoded, value.size());
        append(encoded, value);
    }
    return encoded;
}

}  // namespace quorvel::wire
