// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/key_verbs.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "simulator/keys/block_cipher.h"
#include "simulator/keys/pin_block.h"
#include "wire/hex.h"

namespace quorvel::sim {

using nlohmann::json;

namespace {

std::string_view name_of(KeyStrength strength) { return strength == KeyStrength::kDes ? "des" : "tdes"; }
std::string_view name_of(KeyUse use) { return use == KeyUse::kPin ? "pin" : "data"; }

std::string one_of(Arguments& arguments, std::string_view name, std::string_view first, std::string_view second,
                   std::string_view otherwise) {
    std::string chosen = arguments.text(name, otherwise);
    if (chosen != first && chosen != second && chosen != otherwise) {
        throw RequestError(fmt::format(R"("{}" is neither "{}" nor "{}")", name, first, second));
    }
    return chosen;
}

json to_json(const KeySlot& slot) {
    json object{{"kind", slot.kind == KeySlot::Kind::kMaster ? "master" : "dukpt"},
                {"strength", name_of(slot.strength)},
                {"use", name_of(slot.use)},
                {"index", slot.index},
                {"check", to_hex(slot.checkValue)}};
    if (slot.ksn) { object["ksn"] = to_hex(*slot.ksn); }
    return object;
}

Bytes hex_of(Arguments& arguments, std::string_view name, std::initializer_list<size_t> sizes) {
    Bytes bytes;
    try {
        bytes = from_hex(arguments.text(name));
    } catch (const std::invalid_argument&) {}
    if (std::ranges::find(sizes, bytes.size()) == sizes.end()) {
        throw RequestError(fmt::format("\"{}\" is not of {} hexadecimal digits", name, 2 * *sizes.begin()));
    }
    return bytes;
}

std::string pan_of(Arguments& arguments, const Cards& cards) {
    if (!arguments.has("card")) { return arguments.text("pan"); }
    try {
        return cards.at(arguments.text("card")).pan;
    } catch (const std::out_of_range& error) { throw RequestError(error.what()); }
}

// With a working key its length tells the strength; with DUKPT the member does.
PinKey key_of(Arguments& arguments) {
    static constexpr int kDukpt = 2;
    PinKey key{.index = static_cast<int>(arguments.number("index", 0, 99, 0))};
    if (arguments.has("working")) {
        key.workingKey = hex_of(arguments, "working", {2 * kBlockSize, kBlockSize});
        key.method = key.workingKey.size() == kBlockSize ? 0 : 1;
    } else {
        key.method = kDukpt + (one_of(arguments, "strength", "tdes", "des", "tdes") == "tdes" ? 1 : 0);
    }
    return key;
}

PinBlock block_of(Arguments& arguments, const PinKey& key) {
    PinBlock block{.block = hex_of(arguments, "block", {kBlockSize})};
    if (key.workingKey.empty()) { std::ranges::copy(hex_of(arguments, "ksn", {block.ksn.size()}), block.ksn.begin()); }
    return block;
}

}  // namespace

json keys(Control& control, Arguments& arguments) {
    const std::string strength = one_of(arguments, "strength", "tdes", "des", "");
    const std::string use = one_of(arguments, "use", "pin", "data", "");
    arguments.end();
    json list = json::array();
    for (const KeySlot& slot : control.pin_pad().keys().slots()) {
        const bool wanted =
            (strength.empty() || strength == name_of(slot.strength)) && (use.empty() || use == name_of(slot.use));
        if (wanted) { list.push_back(to_json(slot)); }
    }
    return {{"keys", list}};
}

json decipher_pin(Control& control, Arguments& arguments) {
    const std::string pan = pan_of(arguments, control.cards());
    const PinKey key = key_of(arguments);
    const PinBlock block = block_of(arguments, key);
    arguments.end();
    if (pan.find_first_not_of("0123456789") != std::string::npos) { throw RequestError("\"pan\" is no card number"); }
    const auto clear = decipher_pin(control.pin_pad().keys(), key, block);
    if (!clear) { throw RequestError("there is no such key"); }
    const auto pin = pin_of(*clear, pan);
    if (!pin) { throw RequestError("there is no PIN in it: it is under another key, or of another card"); }
    return {{"pin", *pin}};
}

}  // namespace quorvel::sim
