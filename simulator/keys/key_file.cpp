// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "simulator/files/toml_table.h"
#include "simulator/keys/block_cipher.h"
#include "simulator/keys/key_store.h"

namespace quorvel::sim {

namespace {

constexpr std::array kStrengths{
    Named{"des", KeyStrength::kDes},
    Named{"tdes", KeyStrength::kTdes},
};
constexpr std::array kUses{
    Named{"pin", KeyUse::kPin},
    Named{"data", KeyUse::kData},
};

constexpr int64_t kLastIndex = 99;

struct Place {
    KeyStrength strength;
    KeyUse use;
    int index;
};

Place place(TomlTable& table) {
    for (const std::string_view key : {"strength", "use"}) { static_cast<void>(table.required_text(key)); }
    return {table.choice("strength", kStrengths), table.choice("use", kUses),
            static_cast<int>(table.number("index", 0, kLastIndex, std::nullopt))};
}

Ksn ksn_of(TomlTable& table) {
    const Bytes bytes = table.required_hex("ksn");
    Ksn ksn{};
    if (bytes.size() != ksn.size()) {
        table.refuse("ksn", fmt::format("{} bytes instead of {}", bytes.size(), ksn.size()));
    }
    std::ranges::copy(bytes, ksn.begin());
    return ksn;
}

void add_master(KeyStore& store, TomlTable& table) {
    const Place at = place(table);
    Bytes key = table.required_hex("key");
    table.blame("key", [&] { store.set_master(at.strength, at.use, at.index, std::move(key)); });
}

void add_dukpt(KeyStore& store, TomlTable& table) {
    const Place at = place(table);
    const Ksn ksn = ksn_of(table);
    const bool derived = table.has("base_key");
    const std::string_view name = derived ? "base_key" : "initial_key";
    Bytes key = table.required_hex(name);
    table.blame(name, [&] {
        if (derived) { key = dukpt::initial_key(key, ksn); }
        if (derived && at.strength == KeyStrength::kDes) { key.resize(kBlockSize); }
        store.set_dukpt(at.strength, at.use, at.index, std::move(key), ksn);
    });
}

void add_each(KeyStore& store, TomlTable& keys, std::string_view list, void (*add)(KeyStore& store, TomlTable& table)) {
    for (TomlTable& table : keys.tables(list)) {
        add(store, table);
        table.end();
    }
}

}  // namespace

KeyStore KeyStore::from_table(TomlTable keys) {
    KeyStore store;
    add_each(store, keys, "master", add_master);
    add_each(store, keys, "dukpt", add_dukpt);
    keys.end();
    return store;
}

KeyStore KeyStore::from_toml(std::string_view text) { return from_document<KeyStore>(text); }

KeyStore KeyStore::from_file(const std::string& path) { return from_document_file<KeyStore>(path); }

}  // namespace quorvel::sim
