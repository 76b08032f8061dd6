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

// The look-up searches by halves: to be proved of every table by a static_assert.
template <typename Row, size_t N>
constexpr bool is_sorted_and_unique(const std::array<Row, N>& table) {
    return std::adjacent_find(table.begin(), table.end(), [](const Row& a, const Row& b) { return a.value >= b.value; })
           == table.end();
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
