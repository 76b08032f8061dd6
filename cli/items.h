// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_ITEMS_H
#define QUORVEL_CLI_ITEMS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/value.h"
#include "quorvel/quorvel.h"
#include "wire/item.h"

namespace quorvel::cli {

// As private as its row of the tables says; what is in none is a secret.
[[nodiscard]] Value value_of(const wire::Item& item);

// "PP_SERNUM", or the id in hexadecimal when it has no name.
[[nodiscard]] std::string item_name(uint16_t id);
// Of a name, with or without PP_ and in either case, or of a number such as 0x8001.
[[nodiscard]] std::optional<uint16_t> item_id(std::string_view name);

// The items of a response.
class Items {
public:
    Items();
    ~Items();
    Items(const Items&) = delete;
    Items& operator=(const Items&) = delete;

    // For the library to fill.
    [[nodiscard]] AbecsRspParamMap* get() const noexcept { return map_; }

    [[nodiscard]] bool has(uint16_t id) const { return stored(id) != nullptr; }
    // For decisions, not to be shown. Empty when it is not there.
    [[nodiscard]] std::string raw(uint16_t id) const;
    // Likewise, of digits; none when it has others.
    [[nodiscard]] std::optional<int> number(uint16_t id) const;
    // "none" when it is not there.
    [[nodiscard]] Value value(uint16_t id) const;
    // In the order of their ids.
    [[nodiscard]] std::vector<uint16_t> ids() const;

    // Appends the item if it is there and, of EMV data, if there is any.
    void add(Group& to, std::string label, uint16_t id) const;

private:
    [[nodiscard]] const AbecsRspParamValue* stored(uint16_t id) const;

    AbecsRspParamMap* map_ = nullptr;
};

}  // namespace quorvel::cli

#endif
