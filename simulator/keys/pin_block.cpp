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

constexpr size_t kMinPinDigits = 4;
constexpr size_t kBlockDigits = 2 * kBlockSize;
// The digits of the PAN that enter the block, without its check digit.
constexpr size_t kPanDigits = 12;

constexpr int kFirstDukpt = 2;

KeyStrength strength_of(const PinKey& key) { return key.method % 2 == 0 ? KeyStrength::kDes : KeyStrength::kTdes; }

std::string pan_field(std::string_view pan) {
    pan.remove_suffix(std::min<size_t>(pan.size(), 1));
    return fmt::format("{:0>16}", pan.substr(pan.size() - std::min(pan.size(), kPanDigits)));
}

}  // namespace

Bytes pin_block(std::string_view pin, std::string_view pan) {
    if (pin.size() < kMinPinDigits || pin.size() > kMaxPinDigits) {
        throw std::invalid_argument(fmt::format("a PIN of {} digits", pin.size()));
    }
    std::string pinField = fmt::format("0{:X}{}", pin.size(), pin);
    pinField.resize(kBlockDigits, 'F');
    return masked(from_hex(pinField), from_hex(pan_field(pan)));
}

std::optional<std::string> pin_of(ByteView block, std::string_view pan) {
    static constexpr size_t kHead = 2;
    const std::string digits = to_hex(masked(block, from_hex(pan_field(pan))));
    const size_t size =
        digits[1] <= '9' ? static_cast<size_t>(digits[1] - '0') : static_cast<size_t>(digits[1] - 'A' + 10);
    if (digits[0] != '0' || size < kMinPinDigits || size > kMaxPinDigits) { return std::nullopt; }
    const std::string pin = digits.substr(kHead, size);
    const bool whole = pin.find_first_not_of("0123456789") == std::string::npos
                       && digits.find_first_not_of('F', kHead + size) == std::string::npos;
    return whole ? std::optional(pin) : std::nullopt;
}

std::optional<PinBlock> encipher_pin(KeyStore& keys, const PinKey& key, std::string_view pan, std::string_view pin) {
    const KeyStrength strength = strength_of(key);
    const Bytes block = pin_block(pin, pan);
    if (key.method >= kFirstDukpt) {
        const auto transaction = keys.next_dukpt(strength, KeyUse::kPin, key.index);
        if (!transaction) { return std::nullopt; }
        return PinBlock{encipher(transaction->key, block), transaction->ksn};
    }
    const auto working = keys.working(strength, KeyUse::kPin, key.index, key.workingKey);
    if (!working) { return std::nullopt; }
    return PinBlock{encipher(*working, block)};
}

std::optional<Bytes> decipher_pin(const KeyStore& keys, const PinKey& key, const PinBlock& enciphered) {
    const KeyStrength strength = strength_of(key);
    const auto with = key.method >= kFirstDukpt ? keys.dukpt_key(strength, KeyUse::kPin, key.index, enciphered.ksn)
                                                : keys.working(strength, KeyUse::kPin, key.index, key.workingKey);
    if (!with) { return std::nullopt; }
    return decipher(*with, enciphered.block);
}

}  // namespace quorvel::sim
