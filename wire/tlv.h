// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_TLV_H
#define QUORVEL_WIRE_TLV_H

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "wire/bytes.h"

namespace quorvel::wire {

// The tag's bytes as one number: 0x5A, 0x9F02.
using Tag = uint32_t;

// A chip's data, each with its tag.
using DataObjects = std::map<Tag, Bytes>;

// Tags one after the other. Throws LayoutError when the last is not whole.
[[nodiscard]] std::vector<Tag> split_tags(ByteView list);

// The opposite of encode(). Throws LayoutError for bytes that are none.
[[nodiscard]] DataObjects decode(ByteView encoded);
// In their order, so that a tag may stand more than once.
[[nodiscard]] std::vector<std::pair<Tag, Bytes>> decode_list(ByteView encoded);

// Tag, length and value of each object of the list that is there, in the list's order.
[[nodiscard]] Bytes encode(const DataObjects& objects, const std::vector<Tag>& tags);

}  // namespace quorvel::wire

#endif
