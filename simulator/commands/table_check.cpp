// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/table_check.h"

#include <fmt/format.h>

#include "simulator/cards/emv.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

std::string name_of(const Application& application) {
    return fmt::format("record 1{:02}{} of the tables", application.acquirer, application.record);
}

}  // namespace

void check_record(const Application& application, const TableRecord& record, Journal& journal) {
    for (const std::string_view field : record.unreadable()) {
        journal.record(
            Finding{Finding::Kind::kLayout, fmt::format("{}: {}: no such value", name_of(application), field)});
    }
}

void check_currency(const Application& application, const TableRecord& record, const DataObjects& told,
                    Journal& journal) {
    const auto& due = record.text(RecordField::kCurrency);
    const auto currency = told.find(tag::kCurrency);
    if (!due || currency == told.end() || currency->second == from_hex("0" + *due)) { return; }
    journal.record(Finding{Finding::Kind::kMoney, fmt::format("the currency is {:03}, but {} in {}",
                                                              from_bcd(currency->second), *due, name_of(application))});
}

}  // namespace quorvel::sim::commands
