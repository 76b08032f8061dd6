// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/card_json.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "simulator/cards/card_source.h"
#include "simulator/control/arguments.h"
#include "simulator/files/toml_table.h"

namespace quorvel::sim {

using nlohmann::json;

namespace {

constexpr int kMostLevels = 5;

// What a cards file could not say is refused; all else is judged by whoever reads one.
void put_into(toml::table& table, const std::string& key, const json& value);
void put_into(toml::array& array, const json& value);

void fill(toml::table& table, const json& members) {
    for (const auto& [key, value] : members.items()) { put_into(table, key, value); }
}

toml::array array_of(const json& list) {
    toml::array array;
    for (const json& each : list) { put_into(array, each); }
    return array;
}

// A card has lists of tables that have tables; whoever goes deeper would only want to see it break.
bool fits(const json& value, int levels) {
    if (!value.is_structured()) { return true; }
    return levels > 0 && std::ranges::all_of(value, [&](const json& each) { return fits(each, levels - 1); });
}

[[noreturn]] void refuse(const json& value) { throw RequestError(fmt::format("no card has a {}", value.dump())); }

// Calls `put` with what the value is in TOML.
template <typename Put>
void convert(const json& value, Put put) {
    switch (value.type()) {
        case json::value_t::string:
            return put(value.get<std::string>());
        case json::value_t::boolean:
            return put(value.get<bool>());
        case json::value_t::number_integer:
            return put(value.get<int64_t>());
        case json::value_t::number_unsigned:
            if (value.get<uint64_t>() > static_cast<uint64_t>(INT64_MAX)) { refuse(value); }
            return put(value.get<int64_t>());
        case json::value_t::array:
            return put(array_of(value));
        default:
            refuse(value);
    }
}

void put_into(toml::array& array, const json& value) {
    if (value.is_object()) {
        toml::table table;
        fill(table, value);
        array.push_back(std::move(table));
        return;
    }
    convert(value, [&](auto converted) { array.push_back(std::move(converted)); });
}

void put_into(toml::table& table, const std::string& key, const json& value) {
    if (value.is_null()) {
        table.erase(key);
    } else if (value.is_object()) {
        if (!table[key].is_table()) { table.insert_or_assign(key, toml::table()); }
        fill(*table[key].as_table(), value);
    } else {
        convert(value, [&](auto converted) { table.insert_or_assign(key, std::move(converted)); });
    }
}

}  // namespace

Cards card_from(const json& members, const std::string& name, const Cards& cards, const std::string& like) {
    if (!fits(members, kMostLevels)) { throw RequestError("no card goes so deep"); }
    try {
        toml::table made = like.empty() ? toml::table() : cards.source(like).table;
        fill(made, members);
        toml::table document;
        document.insert_or_assign(name, std::move(made));
        return Cards::from_table(TomlTable(document));
    } catch (const std::out_of_range& error) { throw RequestError(error.what()); } catch (const RequestError&) {
        throw;
    } catch (const std::runtime_error& error) { throw RequestError(error.what()); }
}

}  // namespace quorvel::sim
