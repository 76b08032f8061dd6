// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_VALUE_H
#define QUORVEL_CLI_VALUE_H

#include <concepts>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quorvel::cli {

// What is shown is typed by how private it is, and only the printer turns it into text: a card number becomes its first
// six and last four digits, a secret is withheld, unless the user asked for both to be revealed.
struct Pan {
    std::string digits;
};

// PIN blocks, tracks, keys, and whatever might hold one.
struct Secret {
    std::string text;
};

// RSP_STAT.
struct Status {
    int32_t code;
};

struct Field;
using Group = std::vector<Field>;

struct Value;

struct Table {
    std::vector<std::string> columns;
    std::vector<std::vector<Value>> rows = {};
};

struct Value {
    std::variant<bool, int64_t, std::string, Pan, Secret, Status, Group, Table> data;

    Value(std::string text);
    Value(const char* text);
    Value(std::same_as<bool> auto truth);
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) Value(Number number);
    Value(Pan pan);
    Value(Secret secret);
    Value(Status status);
    Value(Group group);
    Value(Table table);
};

// People read the label, programs the key: "Serial number" and "serialNumber" when none is given.
struct Field {
    std::string label;
    Value value;
    std::string key = {};
};

// Here, where all that a value may hold is complete.
inline Value::Value(std::string text) : data(std::move(text)) {}
inline Value::Value(const char* text) : data(std::string(text)) {}
inline Value::Value(std::same_as<bool> auto truth) : data(truth) {}
template <std::integral Number>
requires(!std::same_as<Number, bool>) Value::Value(Number number) : data(static_cast<int64_t>(number)) {}
inline Value::Value(Pan pan) : data(std::move(pan)) {}
inline Value::Value(Secret secret) : data(std::move(secret)) {}
inline Value::Value(Status status) : data(status) {}
inline Value::Value(Group group) : data(std::move(group)) {}
inline Value::Value(Table table) : data(std::move(table)) {}

}  // namespace quorvel::cli

#endif
