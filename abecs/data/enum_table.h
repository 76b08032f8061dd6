// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_ENUM_TABLE_H
#define QUORVEL_ABECS_DATA_ENUM_TABLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// An enumeration as a table of rows that begin with the value and its name. Validity, names and whatever else a row
// tells are all looked up in the one table, so they cannot drift apart.
namespace abecs {

template <typename Enum>
struct Named {
    Enum value;
    const char* name;
};

// The look-up searches by halves, so this is proved of every table: by enum_table(), or by a static_assert.
template <typename Row, size_t N>
constexpr bool is_sorted_and_unique(const std::array<Row, N>& table) {
    return std::adjacent_find(table.begin(), table.end(), [](const Row& a, const Row& b) { return a.value >= b.value; })
           == table.end();
}

// These rows, once they are proved; the call does not compile otherwise.
template <typename Row, size_t N>
consteval std::array<Row, N> enum_table(const Row (&rows)[N]) {
    void the_rows_are_not_sorted_and_unique();  // not constexpr, and nowhere defined
    const std::array<Row, N> table = std::to_array(rows);
    if (!is_sorted_and_unique(table)) { the_rows_are_not_sorted_and_unique(); }
    return table;
}

// The row of `value`, or null. A caller in C may pass any number for an enumerator.
template <typename Row, size_t N>
[[nodiscard]] constexpr const Row* find_row(const std::array<Row, N>& table, int32_t value) {
    const auto* row = std::lower_bound(table.data(), table.data() + N, value, [](const Row& each, int32_t sought) {
        return static_cast<int32_t>(each.value) < sought;
    });
    return row != table.data() + N && row->value == value ? row : nullptr;
}

}  // namespace abecs

// The two first members of a row. Only the preprocessor can spell an enumerator as text.
#define QUORVEL_NAMED(enumerator) enumerator, #enumerator

#endif
