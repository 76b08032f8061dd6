// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <utility>

#include "simulator/commands/handlers.h"
#include "simulator/commands/widths.h"

namespace quorvel::sim::commands {

namespace {

// Length, TAB_ID, TAB_ACQ and TAB_RECIDX.
constexpr size_t kRecordHead = 3 + 1 + 2 + 2;

void read_record(Reader& fields, size_t number, Tables::Records& batch) {
    const auto field = [&](std::string_view name) { return fmt::format("record {}: {}", number, name); };
    const size_t length = fields.n(field("length"), 3, {kRecordHead, kMaxBlock});
    Tables::Key key;
    key.table = static_cast<int>(fields.n(field("TAB_ID"), 1));
    key.acquirer = static_cast<int>(fields.n(field("TAB_ACQ"), 2));
    key.index = fields.a(field("TAB_RECIDX"), 2);
    Bytes body = fields.b(field("body"), length - kRecordHead);
    if (!batch.try_emplace(std::move(key), std::move(body)).second) {
        throw LayoutError(fmt::format("TLR: record {}: another one has its key", number));
    }
}

Tables::Records read_records(Reader& fields, size_t count) try {
    Tables::Records batch;
    for (size_t number = 1; number <= count; ++number) { read_record(fields, number, batch); }
    fields.end();
    return batch;
} catch (const LayoutError& error) { throw LayoutError(error.what(), Status::kTaberr); }

}  // namespace

Answer tli(Call& call) {
    Reader fields = only_block(call);
    const auto acquirer = static_cast<int>(fields.n("TLI_ACQIDX", 2));
    std::string version = fields.a("TLI_TABVER", kTableVersionWidth);
    fields.end();
    call.device.tables.begin(acquirer, std::move(version));
    return {};
}

Answer tlr(Call& call) {
    if (auto unfit = unless_begun(call, call.device.tables, "TLR")) { return *std::move(unfit); }
    Reader fields = only_block(call);
    const size_t count = fields.n("TLR_NREC", 2);
    call.device.tables.add(read_records(fields, count));
    return {};
}

Answer tle(Call& call) { return end_load(call, call.device.tables, "TLE"); }

}  // namespace quorvel::sim::commands
