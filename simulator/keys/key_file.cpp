// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <stdexcept>
#include <string>
#include <toml++/toml.h>
#include <utility>

#include "simulator/keys/block_cipher.h"
#include "simulator/keys/hex.h"
#include "simulator/keys/key_store.h"
#include "simulator/toml_table.h"

namespace quorvel::sim {

namespace {

template <typename Value>
Value required(const toml::table& table, std::string_view name) {
    const auto value = table[name].value<Value>();
    if (!value) throw std::invalid_argument(fmt::format("no {}", name));
    return *value;
}

template <typename Choice>
Choice choice(const toml::table& table, std::string_view name,
              const std::array<std::pair<std::string_view, Choice>, 2>& choices) {
    const auto text = required<std::string>(table, name);
    const auto* found = std::ranges::find(choices, text, &std::pair<std::string_view, Choice>::first);
    if (found == choices.end()) throw std::invalid_argument(fmt::format("{} is \"{}\"", name, text));
    return found->second;
}

struct Place {
    KeyStrength strength;
    KeyUse use;
    int index;
};

Place place(const toml::table& table) {
    return {choice<KeyStrength>(table, "strength", {{{"des", KeyStrength::des}, {"tdes", KeyStrength::tdes}}}),
            choice<KeyUse>(table, "use", {{{"pin", KeyUse::pin}, {"data", KeyUse::data}}}),
            required<int>(table, "index")};
}

Ksn ksn_of(const toml::table& table) {
    const Bytes bytes = from_hex(required<std::string>(table, "ksn"));
    Ksn ksn{};
    if (bytes.size() != ksn.size()) throw std::invalid_argument(fmt::format("a ksn of {} bytes", bytes.size()));
    std::ranges::copy(bytes, ksn.begin());
    return ksn;
}

void add_master(KeyStore& store, const toml::table& table) {
    const Place at = place(table);
    store.set_master(at.strength, at.use, at.index, from_hex(required<std::string>(table, "key")));
}

void add_dukpt(KeyStore& store, const toml::table& table) {
    const Place at = place(table);
    const Ksn ksn = ksn_of(table);
    Bytes key;
    if (table.contains("base_key")) {
        key = dukpt::initial_key(from_hex(required<std::string>(table, "base_key")), ksn);
        if (at.strength == KeyStrength::des) key.resize(blockSize);
    } else {
        key = from_hex(required<std::string>(table, "initial_key"));
    }
    store.set_dukpt(at.strength, at.use, at.index, std::move(key), ksn);
}

using Adder = void (*)(KeyStore& store, const toml::table& table);

void add_each(KeyStore& store, const toml::node& list, Adder add) {
    const toml::array* const tables = list.as_array();
    if (tables == nullptr || !tables->is_array_of_tables()) throw std::invalid_argument("no list of tables");
    for (const toml::node& table : *tables) {
        try {
            add(store, *table.as_table());
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error(fmt::format("line {}: {}", table.source().begin.line, error.what()));
        }
    }
}

Adder adder(std::string_view name) {
    if (name == "master") return add_master;
    if (name == "dukpt") return add_dukpt;
    throw std::invalid_argument("there is no such table");
}

}  // namespace

KeyStore KeyStore::from_toml(std::string_view text) {
    KeyStore store;
    for (const auto& [name, list] : parse_toml(text)) {
        try {
            add_each(store, list, adder(name.str()));
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error(fmt::format("{}: {}", name.str(), error.what()));
        }
    }
    return store;
}

KeyStore KeyStore::from_file(const std::string& path) {
    const std::string text = text_of_file(path);
    try {
        return from_toml(text);
    } catch (const std::runtime_error& error) { throw std::runtime_error(fmt::format("{}: {}", path, error.what())); }
}

}  // namespace quorvel::sim
