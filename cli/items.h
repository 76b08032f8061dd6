// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_ITEMS_H
#define QUORVEL_CLI_ITEMS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cli/value.h"
#include "quorvel/quorvel.hpp"
#include "wire/item.h"

namespace quorvel::cli {

// As private as its row of the tables says; what is in none is a secret.
[[nodiscard]] Value value_of(const wire::Item& item);

// Of a name, with or without PP_ and in either case, or of a number such as 0x8001.
[[nodiscard]] std::optional<uint16_t> item_id(std::string_view name);

// Appends one of an answer's items if it is there and, of EMV data, if there is any.
void add_item(Group& to, std::string label, const quorvel::Items& items, uint16_t id);
// "none" when it is not there.
[[nodiscard]] Value item_value(const quorvel::Items& items, uint16_t id);

}  // namespace quorvel::cli

#endif
