// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_KEY_STORE_H
#define QUORVEL_SIMULATOR_KEYS_KEY_STORE_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "simulator/keys/dukpt.h"
#include "simulator/wire.h"

namespace quorvel::sim {

class TomlTable;

enum class KeyStrength { kDes, kTdes };
enum class KeyUse { kPin, kData };

// What one DUKPT transaction works with: 8 bytes of key for DES, 16 for triple DES, already the variant for its use.
struct DukptKey {
    Bytes key;
    Ksn ksn{};

    bool operator==(const DukptKey&) const = default;
};

// A place for a key that has one, and what may be told of it.
struct KeySlot {
    enum class Kind { kMaster, kDukpt };

    Kind kind = Kind::kMaster;
    KeyStrength strength = KeyStrength::kTdes;
    KeyUse use = KeyUse::kPin;
    int index = 0;
    // The first three bytes of eight zeros under the key; of DUKPT, under the initial key.
    Bytes checkValue = {};
    // Of the last transaction.
    std::optional<Ksn> ksn = {};
};

// The keys of the PIN pad, by strength, use and index from 0 to 99.
class KeyStore {
public:
    // 8 bytes for DES, 16 for triple DES; none when there is no key at the index.
    [[nodiscard]] std::optional<Bytes> master(KeyStrength strength, KeyUse use, int index) const;
    // A working key, in clear again, that came enciphered under the master key.
    [[nodiscard]] std::optional<Bytes> working(KeyStrength strength, KeyUse use, int index, ByteView enciphered) const;
    // Throws std::invalid_argument for a key or an index that the store has no room for, as set_dukpt() does.
    void set_master(KeyStrength strength, KeyUse use, int index, Bytes key);

    // The key of the next transaction; counts the serial number on. None when there is no key at the index, or when it
    // has served all its transactions.
    [[nodiscard]] std::optional<DukptKey> next_dukpt(KeyStrength strength, KeyUse use, int index);
    // The serial number without counting on: that of the last transaction.
    [[nodiscard]] std::optional<Ksn> ksn(KeyStrength strength, KeyUse use, int index) const;
    // The key of one of the slot's transactions, whether it has been or is to come. None for another slot's number.
    [[nodiscard]] std::optional<Bytes> dukpt_key(KeyStrength strength, KeyUse use, int index, const Ksn& ksn) const;
    void set_dukpt(KeyStrength strength, KeyUse use, int index, Bytes initialKey, const Ksn& ksn);

    [[nodiscard]] std::vector<KeySlot> slots() const;
    // A digit for each index, '1' where there is a key.
    [[nodiscard]] std::string master_map(KeyStrength strength, KeyUse use) const;
    [[nodiscard]] std::string dukpt_map(KeyStrength strength, KeyUse use) const;

    // With keys that have been published as test keys.
    [[nodiscard]] static KeyStore standard();

    // From tables like the following, of keys for tests only. Throws std::runtime_error with what is wrong and where.
    //
    //     [[master]]
    //     strength = "tdes"  # or "des"
    //     use = "data"       # or "pin"
    //     index = 0
    //     key = "0123456789ABCDEFFEDCBA9876543210"
    //
    //     [[dukpt]]          # the same, and the serial number to begin from
    //     strength = "tdes"
    //     use = "pin"
    //     index = 5
    //     base_key = "0123456789ABCDEFFEDCBA9876543210"  # or initial_key
    //     ksn = "FFFF9876543210E00000"
    [[nodiscard]] static KeyStore from_table(TomlTable keys);
    [[nodiscard]] static KeyStore from_toml(std::string_view text);
    [[nodiscard]] static KeyStore from_file(const std::string& path);

    bool operator==(const KeyStore&) const = default;

private:
    using Slot = std::tuple<KeyStrength, KeyUse, int>;

    std::map<Slot, Bytes> masters_;
    std::map<Slot, DukptKey> dukpt_;
};

}  // namespace quorvel::sim

#endif
