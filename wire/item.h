// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_ITEM_H
#define QUORVEL_WIRE_ITEM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "wire/bytes.h"

namespace quorvel::wire {

// What the bytes of a value are.
enum class Type {
    kBytes,
    kDigits,
    kText,
    kHex,     // digits that stand for bytes
    kNumber,  // the most significant byte first
    kPan,
    kPackedPan,  // two digits a byte, filled up with F
    kObjects,    // data objects, each with its tag
};

// Who may see a value. The tables withhold whatever does not say otherwise, and what no table has is withheld too.
enum class Privacy {
    kWithheld,  // keys, PIN blocks, tracks, typed numbers, and all that might be one
    kCard,      // the card's number, holder and expiry: for the one who reads the card, the number masked
    kShown,
};

// A row's part on its value.
struct Content {
    Type type = Type::kBytes;
    // The size of digits, the most for anything else; 0 for any.
    size_t width = 0;
    Privacy privacy = Privacy::kWithheld;
};

// A value out of a packet. One that is not as its row says is withheld.
struct Item {
    // As the protocol calls it; empty for what no table has.
    std::string name;
    // A parameter's id or a data object's tag.
    uint32_t id = 0;
    Bytes value;
    Type type = Type::kBytes;
    Privacy privacy = Privacy::kWithheld;
    // Where it stands in the packet.
    size_t at = 0;
    // What data objects consist of.
    std::vector<Item> parts = {};
};

[[nodiscard]] Item item(std::string name, uint32_t id, ByteView value, const Content& content);

// Whether the whole of it may be shown to anyone.
[[nodiscard]] bool is_open(const Item& item) noexcept;

[[nodiscard]] uint64_t number_of(ByteView value) noexcept;

}  // namespace quorvel::wire

#endif
