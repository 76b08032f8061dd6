// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_TOML_H
#define QUORVEL_WIRE_TOML_H

#include <stdexcept>
#include <string>
#include <string_view>

// The parser asserts of malformed texts like "a = [}" that they cannot be, right before it refuses them as it should.
// So its assertions are left out of every build, for a text must never end the program.
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) static_assert(true)
#include <toml++/toml.h>  // IWYU pragma: export
#pragma pop_macro("NDEBUG")

namespace quorvel::wire {

// What is wrong with a text, as "line 7: expected value", and in which line.
class TomlError : public std::runtime_error {
public:
    TomlError(size_t line, std::string_view fault);

    [[nodiscard]] size_t line() const noexcept { return line_; }
    [[nodiscard]] const std::string& fault() const noexcept { return fault_; }

private:
    size_t line_;
    std::string fault_;
};

// Throws TomlError.
[[nodiscard]] toml::table parse_toml(std::string_view text);
// Throws std::runtime_error with the path of what cannot be read.
[[nodiscard]] std::string text_of_file(const std::string& path);

}  // namespace quorvel::wire

#endif
