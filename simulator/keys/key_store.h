// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_KEY_STORE_H
#define QUORVEL_SIMULATOR_KEYS_KEY_STORE_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>

#include "simulator/bytes.h"

namespace quorvel::sim {

using Ksn = std::array<uint8_t, 10>;

enum class KeyStrength { des, tdes };
enum class KeyUse { pin, data };

// What one DUKPT transaction works with: 8 bytes of key for DES, 16 for triple DES, already the variant for its use.
struct DukptKey {
    Bytes key;
    Ksn ksn{};
};

// The keys of the PIN pad, by strength, use and index from 0 to 99.
class KeyStore {
public:
    // 8 bytes for DES, 16 for triple DES; none when there is no key at the index.
    [[nodiscard]] std::optional<Bytes> master(KeyStrength strength, KeyUse use, int index) const;
    void set_master(KeyStrength strength, KeyUse use, int index, Bytes key);

    // The key of the next transaction; counts the serial number on. None when there is no key at the index, or when it
    // has served all its transactions.
    [[nodiscard]] std::optional<DukptKey> next_dukpt(KeyStrength strength, KeyUse use, int index);
    // The serial number without counting on.
    [[nodiscard]] std::optional<Ksn> ksn(KeyStrength strength, KeyUse use, int index) const;
    void set_dukpt(KeyStrength strength, KeyUse use, int index, Bytes initialKey, const Ksn& ksn);

private:
    using Slot = std::tuple<KeyStrength, KeyUse, int>;

    std::map<Slot, Bytes> masters_;
    std::map<Slot, DukptKey> dukpt_;
};

}  // namespace quorvel::sim

#endif
