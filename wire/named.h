// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_NAMED_H
#define QUORVEL_WIRE_NAMED_H

#include <array>
#include <optional>
#include <string_view>
#include <type_traits>

namespace quorvel::wire {

// A value and what it is called in files, options, requests and reports.
template <typename Value>
struct Named {
    std::string_view name;
    Value value;
};
template <typename Value>
Named(std::string_view, Value) -> Named<Value>;

// Empty for a value that is not among them.
template <typename Value, size_t Count>
[[nodiscard]] constexpr std::string_view name_among(const std::array<Named<Value>, Count>& all,
                                                    std::type_identity_t<Value> value) noexcept {
    for (const Named<Value>& each : all) {
        if (each.value == value) { return each.name; }
    }
    return {};
}

template <typename Value, size_t Count>
[[nodiscard]] constexpr std::optional<Value> value_among(const std::array<Named<Value>, Count>& all,
                                                         std::string_view name) noexcept {
    for (const Named<Value>& each : all) {
        if (each.name == name) { return each.value; }
    }
    return std::nullopt;
}

}  // namespace quorvel::wire

#endif
