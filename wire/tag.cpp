// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/tag.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace quorvel::wire {

namespace {

constexpr auto kShown = Privacy::kShown;

struct Row {
    Tag tag;
    std::string_view name;
    Content content;
};

constexpr Row open(Tag tag, std::string_view name, Type type = Type::kBytes) { return {tag, name, {type, 0, kShown}}; }

constexpr std::array kRows{
    open(0x42, "Issuer identification number"),
    open(0x4F, "Application identifier"),
    open(0x50, "Application label", Type::kText),
    Row{0x57, "Track 2 equivalent", {}},
    Row{0x5A, "Card number", {Type::kPackedPan, 0, Privacy::kCard}},
    open(0x71, "Issuer script 1"),
    open(0x72, "Issuer script 2"),
    open(0x82, "Application interchange profile"),
    open(0x84, "Dedicated file name"),
    open(0x8A, "Authorisation response code", Type::kText),
    open(0x8E, "Cardholder verification list"),
    open(0x91, "Issuer authentication data"),
    open(0x95, "Terminal verification results"),
    open(0x9A, "Transaction date"),
    open(0x9B, "Transaction status information"),
    open(0x9C, "Transaction type"),
    Row{0x5F20, "Cardholder name", {Type::kText, 0, Privacy::kCard}},
    Row{0x5F24, "Expiration date", {Type::kBytes, 0, Privacy::kCard}},
    open(0x5F25, "Effective date"),
    open(0x5F28, "Issuer country"),
    open(0x5F2A, "Transaction currency"),
    open(0x5F34, "Card sequence number"),
    open(0x9F02, "Amount"),
    open(0x9F03, "Cashback"),
    open(0x9F06, "Application identifier of the terminal"),
    open(0x9F07, "Application usage control"),
    open(0x9F09, "Application version"),
    open(0x9F0D, "Issuer action code, default"),
    open(0x9F0E, "Issuer action code, denial"),
    open(0x9F0F, "Issuer action code, online"),
    open(0x9F10, "Issuer application data"),
    open(0x9F12, "Preferred name", Type::kText),
    open(0x9F1A, "Terminal country"),
    open(0x9F1E, "Terminal serial number", Type::kText),
    open(0x9F21, "Transaction time"),
    open(0x9F26, "Application cryptogram"),
    open(0x9F27, "Cryptogram information"),
    open(0x9F33, "Terminal capabilities"),
    open(0x9F34, "Cardholder verification results"),
    open(0x9F35, "Terminal type"),
    open(0x9F36, "Transaction counter"),
    open(0x9F37, "Unpredictable number"),
    open(0x9F39, "Entry mode"),
    open(0x9F41, "Transaction sequence counter"),
    open(0x9F53, "Transaction category"),
    open(0x9F5B, "Issuer script results"),
};
static_assert(std::ranges::adjacent_find(kRows, std::ranges::greater_equal{}, &Row::tag) == kRows.end(),
              "sorted and unique");

const Row* find(Tag tag) noexcept {
    const auto* found = std::ranges::lower_bound(kRows, tag, {}, &Row::tag);
    return found != kRows.end() && found->tag == tag ? found : nullptr;
}

}  // namespace

std::string_view tag_name(Tag tag) noexcept {
    const Row* row = find(tag);
    return row != nullptr ? row->name : std::string_view();
}

Item data_object(Tag tag, ByteView value) {
    const Row* row = find(tag);
    return item(fmt::format("{:02X}", tag), tag, value, row != nullptr ? row->content : Content());
}

}  // namespace quorvel::wire
