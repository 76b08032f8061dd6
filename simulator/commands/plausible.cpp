// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/plausible.h"

#include <array>
#include <chrono>
#include <fmt/format.h>

#include "simulator/cards/emv.h"
#include "wire/hex.h"
#include "wire/tag.h"

namespace quorvel::sim::commands {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr days kYear{366};

void find(Call& call, std::string text) { call.journal.record(Finding{Finding::Kind::kMoney, std::move(text)}); }

unsigned two(ByteView digits, size_t at) { return static_cast<unsigned>(from_bcd(digits.subspan(at, 1))); }

year_month_day date_of(ByteView digits) {
    static constexpr int kCentury = 2000;
    return {std::chrono::year(kCentury + static_cast<int>(two(digits, 0))), std::chrono::month(two(digits, 1)),
            std::chrono::day(two(digits, 2))};
}

std::string words(year_month_day date) {
    return fmt::format("{:02}{:02}{:02}", static_cast<int>(date.year()) % 100, static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()));
}

struct Kept {
    Tag tag;
    std::string_view name;
    size_t digits;
};

constexpr std::array kKept{Kept{tag::kAmount, "amount", 12}, Kept{tag::kCashback, "cashback", 12},
                           Kept{tag::kCurrency, "currency", 3}};

std::optional<uint64_t> number_in(const DataObjects& objects, Tag tag) {
    const auto found = objects.find(tag);
    return found != objects.end() ? std::optional(from_bcd(found->second)) : std::nullopt;
}

}  // namespace

void judge_moment(Call& call, std::string_view command, ByteView date, ByteView time) {
    const year_month_day day = date_of(date);
    const year_month_day today(std::chrono::floor<days>(call.device.clock()));
    if (!day.ok()) {
        find(call, fmt::format("{}: the date is {}, which is none", command, to_hex(date)));
    } else if (std::chrono::abs(sys_days(day) - sys_days(today)) > kYear) {
        find(call, fmt::format("{}: the date is {}, more than a year from the PIN pad's own, {}", command, words(day),
                               words(today)));
    }
    if (two(time, 0) > 23 || two(time, 1) > 59 || two(time, 2) > 59) {
        find(call, fmt::format("{}: the time is {}, which is none", command, to_hex(time)));
    }
}

void judge_twins(Call& call, std::string_view command, const DataObjects& told, const DataObjects& beside) {
    for (const auto& [tag, name, digits] : kKept) {
        const auto first = number_in(told, tag);
        const auto second = number_in(beside, tag);
        if (!first || !second || first == second) { continue; }
        find(call, fmt::format("{}: the {} is {:0{}}, but {:0{}} in SPE_EMVDATA", command, name, *first, digits,
                               *second, digits));
    }
}

void judge_money(Call& call, std::string_view command, const DataObjects& told) {
    DataObjects& known = call.device.transaction->told;
    for (const auto& [tag, name, digits] : kKept) {
        const auto now = number_in(told, tag);
        if (!now) { continue; }
        const auto before = number_in(known, tag);
        if (before.value_or(0) != 0 && before != now) {
            find(call,
                 fmt::format("{}: the {} is {:0{}}, but was {:0{}}", command, name, *now, digits, *before, digits));
        }
        known[tag] = told.at(tag);
    }
}

void judge_acquirer(Call& call, std::string_view command, unsigned acquirer) {
    const unsigned due = call.device.transaction->application.acquirer;
    if (acquirer == due) { return; }
    find(call, fmt::format("{}: the acquirer is {:02}, but the card's application was selected for {:02}", command,
                           acquirer, due));
}

}  // namespace quorvel::sim::commands
