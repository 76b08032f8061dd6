// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SECRETS_TABLE_H
#define QUORVEL_TESTS_SECRETS_TABLE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/secrets/watch.h"
#include "tests/support/raised.h"

namespace secrets {

// One way out of one call that has a secret in its hands. What is wiped there is spelled; a new wipe shows in the rows
// of all that run through it.
struct Row {
    using Call = std::function<void()>;

    std::string name;
    std::vector<Secret> secrets;
    // Makes what the call needs anew, and the call. What it owns lives until all has been looked at.
    std::function<Call()> prepare;
    std::vector<std::string> wiped;
    support::Raised raised = {};
    // What is meant to stay.
    std::vector<std::string> left = {};
};

inline void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

void expect(const Row& row);

using Table = std::vector<Row>;

class Secrets : public testing::TestWithParam<Row> {};

inline std::string name_of(const testing::TestParamInfo<Row>& test) { return test.param.name; }

inline constexpr std::string_view kNumber = "5412751234567894";
inline constexpr std::string_view kKey = "0F1E2D3C4B5A69788796A5B4C3D2E1F0";

const Secret& number();
const Secret& key();

// What the digits name. Not for the program's variables: a short text stands inside of its std::string.
std::string from_digits(std::string_view digits);

template <size_t Size>
void copy_digits(std::string_view digits, uint8_t (&to)[Size]) {
    std::memcpy(to, from_digits(digits).data(), Size);
}

}  // namespace secrets

#endif
