// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_TABLES_H
#define QUORVEL_SIMULATOR_DEVICE_TABLES_H

#include <compare>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/device/table_record.h"
#include "simulator/wire.h"

namespace quorvel::sim {

// What hosts have loaded: a version and records for each acquirer, or for all of them at once. What stands inside a
// record is looked at when a card selects it.
class Tables {
public:
    static constexpr int kAllAcquirers = 0;

    struct Key {
        int table = 0;
        int acquirer = 0;
        // Without trailing spaces.
        std::string index = {};

        // The check takes a zero of the comparison that the compiler writes for a null pointer.
        auto operator<=>(const Key&) const = default;  // NOLINT(modernize-use-nullptr)
    };

    // The bodies, which stand behind what makes the key.
    using Records = std::map<Key, Bytes>;

    // None for an acquirer without tables. Of all acquirers it is the one that they have in common.
    [[nodiscard]] std::optional<std::string> version(int acquirer) const;
    // Whichever table it is in.
    [[nodiscard]] bool has_record(int acquirer, std::string_view index) const;
    // What the record says of an application; nothing for one of another table.
    [[nodiscard]] TableRecord record(int acquirer, std::string_view index) const;
    // By acquirer.
    [[nodiscard]] const std::map<int, std::string>& versions() const noexcept { return versions_; }
    [[nodiscard]] const Records& records() const noexcept { return records_; }

    // A load is not seen before it ends. One that begins takes the place of one that did not end.
    void begin(int acquirer, std::string version);
    [[nodiscard]] bool loading() const noexcept { return load_.has_value(); }
    // Inside a load only: all of the batch or, with a LayoutError, none of it.
    void add(Records batch);
    // Likewise. Drops what the acquirer had.
    void end();

    // All of it at once.
    void load(int acquirer, std::string version, Records records = {});

private:
    struct Load {
        int acquirer;
        std::string version;
        Records records = {};
    };

    std::map<int, std::string> versions_;
    Records records_;
    std::optional<Load> load_;
};

}  // namespace quorvel::sim

#endif
