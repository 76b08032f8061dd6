// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/files/toml_table.h"

#include <fmt/format.h>
#include <stdexcept>

#include "wire/fields.h"
#include "wire/hex.h"

namespace quorvel::sim {

const toml::node* TomlTable::node(std::string_view key) {
    taken_.emplace(key);
    return table_->get(key);
}

std::string TomlTable::below(std::string_view key) const {
    return path_.empty() ? std::string(key) : fmt::format("{}.{}", path_, key);
}

void TomlTable::refuse(std::string_view key, std::string_view fault) const {
    const toml::node* const node = table_->get(key);
    const auto line = (node != nullptr ? node->source() : table_->source()).begin.line;
    // What was not read from a text has no lines.
    throw std::runtime_error(
        fmt::format("{}{}: {}", line == 0 ? "" : fmt::format("line {}: ", line), below(key), fault));
}

void TomlTable::blame(std::string_view key, const std::function<void()>& read) const {
    try {
        read();
    } catch (const std::invalid_argument& error) { refuse(key, error.what()); } catch (const LayoutError& error) {
        refuse(key, error.what());
    }
}

std::string TomlTable::text(std::string_view key) {
    const toml::node* const node = this->node(key);
    if (node == nullptr) { return {}; }
    const auto value = node->value<std::string>();
    if (!value) { refuse(key, "no text"); }
    return *value;
}

Bytes TomlTable::hex(std::string_view key) {
    Bytes bytes;
    blame(key, [&] { bytes = from_hex(text(key)); });
    return bytes;
}

std::string TomlTable::required_text(std::string_view key) {
    if (!table_->contains(key)) { refuse(key, "is missing"); }
    return text(key);
}

Bytes TomlTable::required_hex(std::string_view key) {
    if (!table_->contains(key)) { refuse(key, "is missing"); }
    return hex(key);
}

int64_t TomlTable::number(std::string_view key, int64_t lowest, int64_t highest, std::optional<int64_t> absent) {
    const toml::node* const node = this->node(key);
    if (node == nullptr && absent) { return *absent; }
    if (node == nullptr) { refuse(key, "is missing"); }
    const auto value = node->value_exact<int64_t>();
    if (!value) { refuse(key, "no whole number"); }
    if (*value < lowest || *value > highest) {
        refuse(key, fmt::format("{} is not from {} to {}", *value, lowest, highest));
    }
    return *value;
}

bool TomlTable::flag(std::string_view key) {
    const toml::node* const node = this->node(key);
    if (node == nullptr) { return false; }
    if (!node->is_boolean()) { refuse(key, "neither true nor false"); }
    return node->as_boolean()->get();
}

std::vector<std::string> TomlTable::texts(std::string_view key) {
    const toml::node* const node = this->node(key);
    if (node == nullptr) { return {}; }
    if (node->is_string()) { return {text(key)}; }
    if (!node->is_array() || !node->as_array()->is_homogeneous<std::string>()) { refuse(key, "no list of texts"); }
    std::vector<std::string> texts;
    for (const toml::node& each : *node->as_array()) { texts.push_back(each.as_string()->get()); }
    return texts;
}

std::optional<TomlTable> TomlTable::table(std::string_view key) {
    const toml::node* const node = this->node(key);
    if (node == nullptr) { return std::nullopt; }
    if (!node->is_table()) { refuse(key, "no table"); }
    return TomlTable(*node->as_table(), below(key));
}

std::vector<TomlTable> TomlTable::tables(std::string_view key) {
    const toml::node* const node = this->node(key);
    std::vector<TomlTable> tables;
    if (node == nullptr) { return tables; }
    if (!node->is_array() || !node->as_array()->is_homogeneous<toml::table>()) { refuse(key, "no list of tables"); }
    for (const toml::node& table : *node->as_array()) { tables.emplace_back(*table.as_table(), below(key)); }
    return tables;
}

std::vector<std::string> TomlTable::keys() const {
    std::vector<std::string> keys;
    for (const auto& [key, node] : *table_) { keys.emplace_back(key.str()); }
    return keys;
}

void TomlTable::end() const {
    for (const auto& [key, node] : *table_) {
        if (!taken_.contains(key.str())) { refuse(key.str(), "there is no such key"); }
    }
}

}  // namespace quorvel::sim
