// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/key_store.h"

#include <fmt/format.h>
#include <stdexcept>
#include <utility>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr int kSlotCount = 100;

constexpr std::string_view kKeyA = "0123456789ABCDEFFEDCBA9876543210";
constexpr std::string_view kKeyB = "FEDCBA98765432100123456789ABCDEF";
constexpr Ksn kFirstKsn{0xFF, 0xFF, 0x98, 0x76, 0x54, 0x32, 0x10, 0xE0, 0x00, 0x00};

constexpr size_t key_size(KeyStrength strength) { return (strength == KeyStrength::kDes ? 1 : 2) * kBlockSize; }

void require_room(KeyStrength strength, int index, const Bytes& key) {
    if (index < 0 || index >= kSlotCount) { throw std::invalid_argument(fmt::format("index {}", index)); }
    if (key.size() != key_size(strength)) {
        throw std::invalid_argument(fmt::format("a key of {} bytes instead of {}", key.size(), key_size(strength)));
    }
}

Bytes check_value(ByteView key) {
    static constexpr size_t kSize = 3;
    Bytes value = encipher(key, Bytes(kBlockSize));
    value.resize(kSize);
    return value;
}

template <typename Value>
std::optional<Value> find(const std::map<std::tuple<KeyStrength, KeyUse, int>, Value>& values, KeyStrength strength,
                          KeyUse use, int index) {
    const auto found = values.find({strength, use, index});
    if (found == values.end()) { return std::nullopt; }
    return found->second;
}

template <typename Value>
std::string digits(const std::map<std::tuple<KeyStrength, KeyUse, int>, Value>& values, KeyStrength strength,
                   KeyUse use) {
    std::string text(kSlotCount, '0');
    for (int i = 0; i < kSlotCount; ++i) {
        if (values.contains({strength, use, i})) { text[static_cast<size_t>(i)] = '1'; }
    }
    return text;
}

}  // namespace

std::optional<Bytes> KeyStore::master(KeyStrength strength, KeyUse use, int index) const {
    return find(masters_, strength, use, index);
}

std::optional<Bytes> KeyStore::working(KeyStrength strength, KeyUse use, int index, ByteView enciphered) const {
    const auto key = master(strength, use, index);
    if (!key) { return std::nullopt; }
    return decipher(*key, enciphered);
}

void KeyStore::set_master(KeyStrength strength, KeyUse use, int index, Bytes key) {
    require_room(strength, index, key);
    masters_[{strength, use, index}] = std::move(key);
}

std::optional<DukptKey> KeyStore::next_dukpt(KeyStrength strength, KeyUse use, int index) {
    const auto found = dukpt_.find({strength, use, index});
    if (found == dukpt_.end()) { return std::nullopt; }
    DukptKey& stored = found->second;
    const auto ksn = dukpt::next(stored.ksn);
    if (!ksn) { return std::nullopt; }
    stored.ksn = *ksn;
    return DukptKey{*dukpt_key(strength, use, index, *ksn), *ksn};
}

std::optional<Bytes> KeyStore::dukpt_key(KeyStrength strength, KeyUse use, int index, const Ksn& ksn) const {
    const auto found = find(dukpt_, strength, use, index);
    if (!found || !dukpt::is_same_device(found->ksn, ksn)) { return std::nullopt; }
    const Bytes key = dukpt::transaction_key(found->key, ksn);
    return use == KeyUse::kPin ? dukpt::pin_key(key) : dukpt::data_key(key);
}

std::optional<Ksn> KeyStore::ksn(KeyStrength strength, KeyUse use, int index) const {
    const auto found = find(dukpt_, strength, use, index);
    if (!found) { return std::nullopt; }
    return found->ksn;
}

void KeyStore::set_dukpt(KeyStrength strength, KeyUse use, int index, Bytes initialKey, const Ksn& ksn) {
    require_room(strength, index, initialKey);
    dukpt_[{strength, use, index}] = {std::move(initialKey), ksn};
}

std::vector<KeySlot> KeyStore::slots() const {
    std::vector<KeySlot> slots;
    for (const auto& [slot, key] : masters_) {
        const auto& [strength, use, index] = slot;
        slots.push_back({KeySlot::Kind::kMaster, strength, use, index, check_value(key)});
    }
    for (const auto& [slot, stored] : dukpt_) {
        const auto& [strength, use, index] = slot;
        slots.push_back({KeySlot::Kind::kDukpt, strength, use, index, check_value(stored.key), stored.ksn});
    }
    return slots;
}

std::string KeyStore::master_map(KeyStrength strength, KeyUse use) const { return digits(masters_, strength, use); }

std::string KeyStore::dukpt_map(KeyStrength strength, KeyUse use) const { return digits(dukpt_, strength, use); }

KeyStore KeyStore::standard() {
    KeyStore store;
    for (const KeyStrength strength : {KeyStrength::kDes, KeyStrength::kTdes}) {
        const size_t size = key_size(strength);
        Bytes initialKey = dukpt::initial_key(from_hex(kKeyA), kFirstKsn);
        initialKey.resize(size);
        for (const KeyUse use : {KeyUse::kPin, KeyUse::kData}) {
            store.set_master(strength, use, 0, from_hex(kKeyA.substr(0, 2 * size)));
            store.set_master(strength, use, 1, from_hex(kKeyB.substr(0, 2 * size)));
            store.set_dukpt(strength, use, 0, initialKey, kFirstKsn);
        }
    }
    return store;
}

}  // namespace quorvel::sim
