// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FILES_TOML_TABLE_H
#define QUORVEL_SIMULATOR_FILES_TOML_TABLE_H

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/wire.h"
#include "wire/named.h"
#include "wire/toml.h"

namespace quorvel::sim {

// Reads one table of a TOML document key by key. Whatever is wrong with a key leaves as a std::runtime_error like
// "line 7: visa-chip.chip.atr: no text". The document must outlive it.
class TomlTable {
public:
    // `path` names the table in messages: the keys that lead to it, empty for the document.
    explicit TomlTable(const toml::table& table, std::string path = {}) : table_(&table), path_(std::move(path)) {}

    [[nodiscard]] bool has(std::string_view key) const { return table_->contains(key); }
    // Where it begins in the document.
    [[nodiscard]] uint32_t line() const { return table_->source().begin.line; }
    // Null when the key is not there.
    [[nodiscard]] const toml::node* node(std::string_view key);

    // Empty when the key is not there.
    [[nodiscard]] std::string text(std::string_view key);
    [[nodiscard]] Bytes hex(std::string_view key);
    [[nodiscard]] std::string required_text(std::string_view key);
    [[nodiscard]] Bytes required_hex(std::string_view key);
    [[nodiscard]] int64_t number(std::string_view key, int64_t lowest, int64_t highest, std::optional<int64_t> absent);

    // False when the key is not there.
    [[nodiscard]] bool flag(std::string_view key);
    // A list of texts, or one text alone.
    [[nodiscard]] std::vector<std::string> texts(std::string_view key);

    // The value that stands beside the text; the first when the key is not there.
    template <typename Value, size_t Count>
    [[nodiscard]] Value choice(std::string_view key, const std::array<Named<Value>, Count>& among) {
        if (!table_->contains(key)) { return among.front().value; }
        const std::string chosen = text(key);
        if (const auto value = value_among(among, chosen)) { return *value; }
        refuse(key, "\"" + chosen + "\" is none of its values");
    }

    [[nodiscard]] std::optional<TomlTable> table(std::string_view key);
    // A list of tables.
    [[nodiscard]] std::vector<TomlTable> tables(std::string_view key);
    // Every key, in alphabetical order.
    [[nodiscard]] std::vector<std::string> keys() const;

    // Calls `read` and blames the key for a std::invalid_argument or a LayoutError that it throws.
    void blame(std::string_view key, const std::function<void()>& read) const;
    [[noreturn]] void refuse(std::string_view key, std::string_view fault) const;
    // Refuses the first key that nobody asked for.
    void end() const;

private:
    [[nodiscard]] std::string below(std::string_view key) const;

    const toml::table* table_;
    std::string path_;
    std::set<std::string, std::less<>> taken_;
};

// Calls `read`, and names the file in what it complains of.
template <typename Read>
[[nodiscard]] auto blaming_file(const std::string& file, Read read) {
    try {
        return read();
    } catch (const std::runtime_error& error) { throw std::runtime_error(file + ": " + error.what()); }
}

// What `Whole::from_table` makes of a document, and of a file that holds one. Throws std::runtime_error with the line
// of what is no TOML.
template <typename Whole>
[[nodiscard]] Whole from_document(std::string_view text) {
    const toml::table document = parse_toml(text);
    return Whole::from_table(TomlTable(document));
}
template <typename Whole>
[[nodiscard]] Whole from_document_file(const std::string& path) {
    const std::string text = text_of_file(path);
    return blaming_file(path, [&] { return from_document<Whole>(text); });
}

}  // namespace quorvel::sim

#endif
