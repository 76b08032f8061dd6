// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/tables.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "wire/fields.h"

namespace quorvel::sim {

std::optional<std::string> Tables::version(int acquirer) const {
    if (versions_.empty()) { return std::nullopt; }
    const std::string& first = versions_.begin()->second;
    if (acquirer == kAllAcquirers) {
        const bool common = std::ranges::all_of(versions_, [&](const auto& entry) { return entry.second == first; });
        return common ? std::optional(first) : std::nullopt;
    }
    auto found = versions_.find(acquirer);
    if (found == versions_.end()) { found = versions_.find(kAllAcquirers); }
    return found != versions_.end() ? std::optional(found->second) : std::nullopt;
}

bool Tables::has_record(int acquirer, std::string_view index) const {
    return std::ranges::any_of(
        records_, [&](const auto& record) { return record.first.acquirer == acquirer && record.first.index == index; });
}

TableRecord Tables::record(int acquirer, std::string_view index) const {
    static constexpr int kApplications = 1;
    const auto found = records_.find({kApplications, acquirer, std::string(index)});
    return found != records_.end() ? TableRecord(found->second) : TableRecord();
}

void Tables::begin(int acquirer, std::string version) {
    load_ = Load{.acquirer = acquirer, .version = std::move(version)};
}

void Tables::add(Records batch) {
    for (const auto& [key, body] : batch) {
        if (load_->acquirer != kAllAcquirers && key.acquirer != load_->acquirer) {
            throw LayoutError(
                fmt::format("TLR: a record of acquirer {:02} in a load for {:02}", key.acquirer, load_->acquirer),
                Status::kTaberr);
        }
        if (load_->records.contains(key)) {
            throw LayoutError(
                fmt::format("TLR: record {}{:02}{} is in the load already", key.table, key.acquirer, key.index),
                Status::kTaberr);
        }
    }
    load_->records.merge(batch);
}

void Tables::end() {
    Load load = *std::exchange(load_, std::nullopt);
    if (load.acquirer == kAllAcquirers) {
        versions_.clear();
        records_.clear();
    }
    std::erase_if(records_, [&](const auto& record) { return record.first.acquirer == load.acquirer; });
    versions_[load.acquirer] = std::move(load.version);
    records_.merge(load.records);
}

void Tables::load(int acquirer, std::string version, Records records) {
    begin(acquirer, std::move(version));
    add(std::move(records));
    end();
}

}  // namespace quorvel::sim
