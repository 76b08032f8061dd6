// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/cards.h"

#include "simulator/cards/emv.h"
#include "simulator/cards/risk.h"
#include "tests/simulator/fixture.h"
#include "wire/hex.h"

using namespace quorvel::sim;

namespace {

// A digit that was mistyped in the shipped file would otherwise go unnoticed.
bool passes_luhn_check(const std::string& pan) {
    int sum = 0;
    for (size_t i = 0; i < pan.size(); ++i) {
        const int digit = pan[pan.size() - 1 - i] - '0';
        const int weighted = i % 2 == 0 ? digit : 2 * digit;
        sum += weighted / 10 + weighted % 10;
    }
    return sum % 10 == 0;
}

TEST(Cards, StandardOnesAgreeWithThemselves) {
    ASSERT_FALSE(Cards::standard().names().empty());
    for (const std::string& name : Cards::standard().names()) {
        SCOPED_TRACE(name);
        const Card& card = Cards::standard().at(name);
        EXPECT_TRUE(passes_luhn_check(card.pan));
        EXPECT_TRUE(card.track2.starts_with(card.pan + "=" + card.expiry.substr(0, 4) + card.serviceCode));
        if (!card.track1.empty()) {
            EXPECT_TRUE(card.track1.starts_with("B" + card.pan + "^" + card.name + "^" + card.expiry.substr(0, 4)));
        }
        EXPECT_EQ(card.prefers_chip(), card.chip.has_value() || card.contactless.has_value());
    }
    EXPECT_THROW(static_cast<void>(Cards::standard().at("visa")), std::out_of_range);
}

// The keys that no standard card has, and what a card's data objects are made of.
TEST(Cards, AreReadWhole) {
    const Cards cards = Cards::from_toml(R"(
        [a]
        pan = "4111111111111111"
        track2 = "41=30"
        expiry = "301231"
        service_code = "206"
        country = 76
        sequence = 4
        [[a.applications]]
        aid = "A000000003"
        label = "DEBIT"
        acquirer = 99
        record = "Z9"
        tags = { 9F07 = "FF00" }
        [a.chip]
        first = "declined"
        second = "approved"
        fault = "blocked"
        atr = "3B00"
        tags = { 82 = "3800", 5F34 = "07" }
        [a.contactless]
        fault = "use-chip"
        [b]
        pan = "41"
    )");
    const Card& card = cards.at("a");
    EXPECT_EQ(card.applications.at(0).objects, (DataObjects{{0x9F07, {0xFF, 0x00}}}));
    const Chip& chip = *card.chip;
    EXPECT_EQ(std::tuple(chip.first, chip.second, chip.fault, card.contactless->fault),
              std::tuple(Chip::First::kDeclined, Chip::Second::kApproved, Status::kCardblocked, Status::kCtlsifchg));
    EXPECT_EQ(to_hex(chip.atr), "3B00");
    EXPECT_EQ(to_hex(chip.script.at(from_hex("00A40400A000000003"))), "6F108405A000000003A507500544454249549000");
    EXPECT_EQ(card.objects(),
              decode(from_hex("570341D30F5A084111111111111111820238005F24033012315F280200765F300202065F340107")));
    EXPECT_FALSE(cards.at("b").chip || cards.at("b").contactless || cards.at("b").has_stripe());
    EXPECT_EQ(cards.at("b").objects().at(0x5A), from_hex("41"));
}

TEST(Cards, ErrorsNameTheKeyAndTheLine) {
    const std::string card = "[a]\npan = '41'\n";
    const std::string application = card + "[[a.applications]]\n";
    for (const auto& [text, due] : {
             std::pair<std::string, std::string>{"a = 1", "line 1: a: no table"},
             {"[a]\npan = 41", "line 2: a.pan: no text"},
             {"[a]\npan = '4-1'", "line 2: a.pan: not only digits"},
             {"[a]\npan = '41111111111111111111'", "line 2: a.pan: no card number"},
             {card + "track2 = '41^30'", "line 3: a.track2: not only digits and ="},
             {card + "expiry = '3012'", "line 3: a.expiry: not of 6 digits"},
             {card + "country = 1000", "line 3: a.country: 1000 is not from 0 to 999"},
             {card + "contry = 76", "line 3: a.contry: there is no such key"},
             {application + "aid = 'A0'\nacquirer = 1\nrecord = '1'",
              "line 6: a.applications.record: not of two characters"},
             {application + "aid = 'A'", "line 4: a.applications.aid: an odd number of hexadecimal digits"},
             {card + "[a.chip]\nverification = 'offline-pin'", "line 3: a.chip.pin: is missing"},
             {card + "[a.chip]\ntags = { 9F = '00' }", "line 4: a.chip.tags.9F: tags: tag: 1 bytes due, 0 left"},
             {card + "[a.chip]\ntags = { 8283 = '00' }", "line 4: a.chip.tags.8283: no single tag"},
             {card + "[a.chip]\nscript = { 00A404 = '9000' }", "line 4: a.chip.script.00A404: no command and response"},
             {"[a", "line 1: "},
         }) {
        const std::string fault = thrown([&, &wrong = text] { static_cast<void>(Cards::from_toml(wrong)); });
        EXPECT_TRUE(fault.starts_with(due)) << fault;
    }
}

// At the threshold the share begins to grow from 10, at the floor limit it would be 90.
constexpr Risk kBiased{
    .managed = true, .floorLimit = 5000, .targetPercentage = 10, .threshold = 1000, .maxPercentage = 90};

TEST(Risk, MoreOfLargerAmountsGoOnline) {
    for (const auto& [amount, share] : {std::pair(0U, 10U), {1000, 10}, {3000, 50}, {4999, 89}}) {
        Risk risk = kBiased;
        risk.amount = amount;
        EXPECT_TRUE(selected_at_random(risk, share)) << amount;
        EXPECT_FALSE(selected_at_random(risk, share + 1)) << amount;
    }
    Risk flat = kBiased;
    flat.amount = flat.threshold = flat.floorLimit;
    EXPECT_TRUE(selected_at_random(flat, 10));
    EXPECT_FALSE(selected_at_random(flat, 11));
}

TEST(Risk, FirstDecision) {
    using enum Decision;
    using First = Chip::First;
    constexpr unsigned kLate = 99;
    const Risk small{.amount = 100};
    const Risk managed{.managed = true, .amount = 4999, .floorLimit = 5000};
    const Risk large{.managed = true, .amount = 5000, .floorLimit = 5000};
    const Risk offline{.canGoOnline = false, .managed = true, .amount = 5000, .floorLimit = 5000};
    for (const auto& [risk, verified, wish, draw, decision, results] : {
             std::tuple(managed, Verified{}, First::kAsAsked, kLate, kApproved, ""),
             {offline, {}, First::kAsAsked, kLate, kDeclined, "0000008000"},
             {kBiased, {}, First::kAsAsked, 10, kOnline, "0000001000"},
             {kBiased, {}, First::kAsAsked, 11, kApproved, ""},
             {small, {.pinOnline = true}, First::kAsAsked, kLate, kOnline, "0000040000"},
             {small, {.pinOffline = true, .pinErrors = 2}, First::kAsAsked, kLate, kApproved, ""},
             {small, {.failed = true, .pinBlocked = true}, First::kOnline, kLate, kDeclined, "0000A00000"},
             {small, {}, First::kOnline, kLate, kOnline, ""},
             {Risk{.canGoOnline = false}, {}, First::kOnline, kLate, kDeclined, ""},
             {large, {}, First::kDeclined, kLate, kDeclined, "0000008000"},
         }) {
        DataObjects objects;
        EXPECT_EQ(first_decision(risk, verified, wish, draw, objects), decision) << results;
        EXPECT_EQ(to_hex(objects[tag::kTerminalResults]), results);
    }
}

TEST(Risk, FinalDecision) {
    using enum FinalDecision;
    using Second = Chip::Second;
    for (const auto& [issuer, wish, decision] : {
             std::tuple(Issuer::kApproved, Second::kAsAsked, kApproved),
             {Issuer::kApproved, Second::kApproved, kApproved},
             {Issuer::kApproved, Second::kDeclined, kDeclinedByCard},
             {Issuer::kDeclined, Second::kAsAsked, kDeclinedByIssuer},
             {Issuer::kDeclined, Second::kApproved, kDeclinedByIssuer},
             {Issuer::kUnreachable, Second::kAsAsked, kDeclinedByCard},
             {Issuer::kUnreachable, Second::kApproved, kApproved},
             {Issuer::kUnreachable, Second::kDeclined, kDeclinedByCard},
         }) {
        EXPECT_EQ(final_decision(issuer, wish), decision);
    }
}

}  // namespace
