// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/card.h"

#include <algorithm>
#include <fmt/format.h>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

// Two digits a byte, a last one without a second filled up.
Bytes compressed(std::string digits) {
    if (digits.size() % 2 != 0) { digits += 'F'; }
    return from_hex(digits);
}

Bytes track2_equivalent(std::string track) {
    std::ranges::replace(track, '=', 'D');
    return compressed(std::move(track));
}

}  // namespace

DataObjects Card::objects() const {
    DataObjects objects = chip ? chip->objects : DataObjects();
    const auto add = [&](Tag tag, Bytes&& value) {
        if (!value.empty()) { objects.try_emplace(tag, std::move(value)); }
    };
    add(0x57, track2_equivalent(track2));
    add(0x5A, compressed(pan));
    add(0x5F20, to_bytes(name));
    add(0x5F24, from_hex(expiry));
    add(0x5F28, from_hex(fmt::format("{:04}", issuerCountry)));
    if (!serviceCode.empty()) { add(0x5F30, from_hex("0" + serviceCode)); }
    add(0x5F34, from_hex(fmt::format("{:02}", panSequence)));
    return objects;
}

}  // namespace quorvel::sim
