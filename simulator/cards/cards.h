// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_CARDS_H
#define QUORVEL_SIMULATOR_CARDS_CARDS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/cards/card.h"

namespace quorvel::sim {

class TomlTable;

// Cards by name: Cards::standard().at("visa-chip").
class Cards {
public:
    // Throws std::out_of_range, with the name, when there is no such card.
    [[nodiscard]] const Card& at(std::string_view name) const { return entry(name).card; }
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] bool has(std::string_view name) const { return cards_.contains(name); }
    // What the card was read from, for others like it. Throws as at() does.
    struct Source;
    [[nodiscard]] const Source& source(std::string_view name) const { return *entry(name).source; }
    // Those of the same name are replaced.
    void add(const Cards& more);

    // Those of cards.toml, with numbers that have been published as test numbers.
    [[nodiscard]] static const Cards& standard();

    // From tables like the following; whatever is not said to be needed may be left out. Throws std::runtime_error with
    // what is wrong and where.
    //
    //     [visa-chip]
    //     pan = "4111111111111111"  # needed
    //     track1 = "B4111111111111111^CARDHOLDER/VISA^3012201000"
    //     track2 = "4111111111111111=3012201000"
    //     track3 = ""
    //     expiry = "301231"
    //     name = "CARDHOLDER/VISA"
    //     service_code = "201"
    //     country = 76
    //     sequence = 1
    //
    //     [[visa-chip.applications]]
    //     aid = "A0000000031010"    # needed
    //     label = "VISA CREDITO"
    //     type = 1                  # 1 credit, 2 debit, up to 98
    //     acquirer = 3              # of the table record that it selects; needed, as the record's index
    //     record = "01"
    //     tags = { 9F07 = "FF00" }
    //
    //     [visa-chip.chip]
    //     verification = "online-pin"  # "none", "signature", "offline-pin"; a list of its own, 8E in tags, comes first
    //     pin = "1234"
    //     tries = 3
    //     first = "as-asked"           # "online", "declined": the first decision
    //     second = "as-asked"          # "approved", "declined": the decision after the issuer
    //     fault = "mute"               # and others, see the reader
    //     atr = "3B6500002063CB6800"
    //     tags = { 82 = "3800" }
    //     script = { 00B2010C = "70009000" }  # responses by command header and data
    //
    //     [visa-chip.contactless]
    //     mode = "emv"                 # "stripe"
    //     verification = "none"        # "signature", "online-pin", and "device" for a phone
    //     fault = "multiple"
    [[nodiscard]] static Cards from_table(TomlTable table);
    [[nodiscard]] static Cards from_toml(std::string_view text);
    [[nodiscard]] static Cards from_file(const std::string& path);

private:
    struct Entry {
        Card card;
        std::shared_ptr<const Source> source;
    };

    [[nodiscard]] const Entry& entry(std::string_view name) const;

    std::map<std::string, Entry, std::less<>> cards_;
};

}  // namespace quorvel::sim

#endif
