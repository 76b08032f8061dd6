// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/action_codes.h"

#include <algorithm>
#include <utility>

#include "simulator/cards/emv.h"

namespace quorvel::sim {

namespace {

const Bytes kUnverified{0x00, 0x00, 0x80, 0x00, 0x00};
const Bytes kAnything{0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

Bytes united(Bytes code, const Bytes& other) {
    code.resize(std::max(code.size(), other.size()));
    for (size_t i = 0; i < other.size(); ++i) { code[i] |= other[i]; }
    return code;
}

}  // namespace

ActionCodes ActionCodes::with(const ActionCodes& other) const {
    return {.denial = united(denial, other.denial),
            .online = united(online, other.online),
            .otherwise = united(otherwise, other.otherwise)};
}

ActionCodes ActionCodes::of_card(const DataObjects& objects) {
    return {.denial = value_of(objects, card_tag::kIssuerDenial, kUnverified),
            .online = value_of(objects, card_tag::kIssuerOnline, kAnything),
            .otherwise = value_of(objects, card_tag::kIssuerDefault, kAnything)};
}

bool meets(ByteView code, ByteView results) {
    bool meets = false;
    for (size_t i = 0; i < std::min(code.size(), results.size()); ++i) { meets |= (code[i] & results[i]) != 0; }
    return meets;
}

}  // namespace quorvel::sim
