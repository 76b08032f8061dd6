// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/pin_block.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>
#include <string>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr size_t minPinDigits = 4;
constexpr size_t blockDigits = 2 * blockSize;
// The digits of the PAN that enter the block, without its check digit.
constexpr size_t panDigits = 12;

std::string pan_field(std::string_view pan) {
    pan.remove_suffix(std::min<size_t>(pan.size(), 1));
    return fmt::format("{:0>16}", pan.substr(pan.size() - std::min(pan.size(), panDigits)));
}

}  // namespace

Bytes pin_block(std::string_view pin, std::string_view pan) {
    if (pin.size() < minPinDigits || pin.size() > maxPinDigits) {
        throw std::invalid_argument(fmt::format("a PIN of {} digits", pin.size()));
    }
    std::string pinField = fmt::format("0{:X}{}", pin.size(), pin);
    pinField.resize(blockDigits, 'F');
    return masked(from_hex(pinField), from_hex(pan_field(pan)));
}

std::optional<PinBlock> encipher_pin(KeyStore& keys, const PinKey& key, std::string_view pan, std::string_view pin) {
    static constexpr int firstDukpt = 2;
    const KeyStrength strength = key.method % 2 == 0 ? KeyStrength::kDes : KeyStrength::kTdes;
    const Bytes block = pin_block(pin, pan);
    if (key.method >= firstDukpt) {
        const auto transaction = keys.next_dukpt(strength, KeyUse::kPin, key.index);
        if (!transaction) return std::nullopt;
        return PinBlock{encipher(transaction->key, block), transaction->ksn};
    }
    const auto working = keys.working(strength, KeyUse::kPin, key.index, key.workingKey);
    if (!working) return std::nullopt;
    return PinBlock{encipher(*working, block)};
}

}  // namespace quorvel::sim
