// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/emv_params.h"

#include <fmt/format.h>

#include "simulator/cards/emv.h"
#include "simulator/commands/widths.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMaxMessage = 128;

void limit(const Reader& value, std::string_view name, size_t most) {
    if (value.left() > most) { throw LayoutError(fmt::format("{}: {} bytes, at most {}", name, value.left(), most)); }
}

Bytes amount(Reader& value) { return bcd(value.n("digits", kAmountDigits), kAmountDigits / 2); }

}  // namespace

DataObjects emv_data(Reader& value) {
    limit(value, "SPE_EMVDATA", kMaxEmvData);
    return decode(value.b("objects", value.left()));
}

std::vector<Tag> tag_list(Reader& value) {
    limit(value, "SPE_TAGLIST", kMaxTagList);
    return split_tags(value.b("tags", value.left()));
}

std::string message(Reader& value) {
    limit(value, "SPE_DSPMSG", kMaxMessage);
    return value.s("text", value.left(), Cr::kAllowed);
}

unsigned two_digits(Reader& value) { return static_cast<unsigned>(value.n("digits", 2)); }

DataObjects transaction_objects(const Params& params) {
    DataObjects objects = params.find(spe::kEmvData, emv_data).value_or(DataObjects());
    const auto put = [&](Tag tag, std::optional<Bytes> value) {
        if (value) { objects[tag] = std::move(*value); }
    };
    put(tag::kAmount, params.find(spe::kAmount, amount));
    put(tag::kCashback, params.find(spe::kCashback, amount));
    put(tag::kType, params.find(spe::kTrnType, [](Reader& value) { return value.b("type", 1); }));
    put(tag::kCurrency, params.find(spe::kTrnCurr, [](Reader& value) { return bcd(value.n("currency", 3), 2); }));
    return objects;
}

Answer with_emv_data(std::vector<Param> params, const DataObjects& objects,
                     const std::optional<std::vector<Tag>>& tags) {
    if (tags) {
        Bytes found = encode(objects, *tags);
        if (found.size() > kMaxEmvData) { return {.status = Status::kRspovrfl}; }
        params.push_back({pp::kEmvData, std::move(found)});
    }
    return Answer::of(params);
}

}  // namespace quorvel::sim::commands
