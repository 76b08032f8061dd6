// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/dukpt.h"

#include <bit>
#include <stdexcept>

#include "simulator/keys/block_cipher.h"

namespace quorvel::sim::dukpt {

namespace {

using Block = std::array<uint8_t, kBlockSize>;

constexpr uint32_t kCounterBits = 21;
constexpr uint32_t kCounterMask = (1U << kCounterBits) - 1;
constexpr int kMaxOnes = 10;
// The counter begins inside the eighth byte.
constexpr uint8_t kFixedInEighth = 0xE0;

constexpr Block kLeftHalfMask{0xC0, 0xC0, 0xC0, 0xC0};
constexpr Block kPinMask{0, 0, 0, 0, 0, 0, 0, 0xFF};
constexpr Block kDataMask{0, 0, 0, 0, 0, 0xFF};

uint32_t counter(const Ksn& ksn) {
    return ((static_cast<uint32_t>(ksn[7]) << 16) | (static_cast<uint32_t>(ksn[8]) << 8) | ksn[9]) & kCounterMask;
}

Ksn with_counter(Ksn ksn, uint32_t value) {
    ksn[7] = static_cast<uint8_t>((ksn[7] & kFixedInEighth) | (value >> 16));
    ksn[8] = static_cast<uint8_t>(value >> 8);
    ksn[9] = static_cast<uint8_t>(value);
    return ksn;
}

ByteView left(ByteView key) { return key.first(kBlockSize); }
ByteView right(ByteView key) { return key.last(kBlockSize); }

Bytes one_way(ByteView leftKey, ByteView rightKey, ByteView reg) {
    return masked(encipher(leftKey, masked(reg, rightKey)), rightKey);
}

// In the DES form both halves are the whole key, and there is nothing before the right half.
Bytes descend(ByteView key, ByteView reg) {
    Bytes rightHalf = one_way(left(key), right(key), reg);
    if (key.size() == kBlockSize) { return rightHalf; }
    const Bytes maskedKey = masked(key, kLeftHalfMask);
    Bytes next = one_way(left(maskedKey), right(maskedKey), reg);
    append(next, rightHalf);
    return next;
}

}  // namespace

Bytes initial_key(ByteView baseKey, const Ksn& ksn) {
    if (baseKey.size() != 2 * kBlockSize) {
        throw std::invalid_argument("a base derivation key that is not of 16 bytes");
    }
    const Ksn start = with_counter(ksn, 0);
    const ByteView device = ByteView(start).first(kBlockSize);
    Bytes key = encipher(baseKey, device);
    append(key, encipher(masked(baseKey, kLeftHalfMask), device));
    return key;
}

std::optional<Ksn> next(const Ksn& ksn) {
    uint32_t value = counter(ksn) + 1;
    while (std::popcount(value) > kMaxOnes) { value += value & -value; }
    if (value > kCounterMask) { return std::nullopt; }
    return with_counter(ksn, value);
}

bool is_same_device(const Ksn& one, const Ksn& other) { return with_counter(one, 0) == with_counter(other, 0); }

// One step down for each one bit of the counter, from the highest on.
Bytes transaction_key(ByteView initialKey, const Ksn& ksn) {
    Bytes key(initialKey.begin(), initialKey.end());
    uint32_t reached = 0;
    for (uint32_t bit = 1U << (kCounterBits - 1); bit != 0; bit >>= 1) {
        if ((counter(ksn) & bit) == 0) { continue; }
        reached |= bit;
        const Ksn step = with_counter(ksn, reached);
        key = descend(key, ByteView(step).last(kBlockSize));
    }
    return key;
}

Bytes pin_key(ByteView transactionKey) { return masked(transactionKey, kPinMask); }

// Enciphered under itself, so that it tells nothing about the transaction's other keys.
Bytes data_key(ByteView transactionKey) {
    const Bytes variant = masked(transactionKey, kDataMask);
    return encipher(variant, variant);
}

}  // namespace quorvel::sim::dukpt
