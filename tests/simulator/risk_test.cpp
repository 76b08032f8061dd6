// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/risk.h"

#include <gtest/gtest.h>

#include "simulator/cards/emv.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

// At the threshold the share begins to grow from 10, at the floor limit it would be 90.
constexpr Risk biased{
    .managed = true, .floorLimit = 5000, .targetPercentage = 10, .threshold = 1000, .maxPercentage = 90};

TEST(Risk, MoreOfLargerAmountsGoOnline) {
    struct Case {
        uint64_t amount;
        unsigned share;
    };
    for (const auto& [amount, share] : {Case{0, 10}, {999, 10}, {1000, 10}, {3000, 50}, {4999, 89}}) {
        Risk risk = biased;
        risk.amount = amount;
        EXPECT_TRUE(selected_at_random(risk, share)) << amount;
        EXPECT_FALSE(selected_at_random(risk, share + 1)) << amount;
    }
    Risk flat = biased;
    flat.amount = flat.threshold = flat.floorLimit;
    EXPECT_TRUE(selected_at_random(flat, 10));
    EXPECT_FALSE(selected_at_random(flat, 11));
}

TEST(Risk, FirstDecision) {
    using enum Decision;
    using First = Chip::First;
    constexpr unsigned late = 99;
    const Risk small{.amount = 100};
    const Risk managed{.managed = true, .amount = 4999, .floorLimit = 5000};
    const Risk large{.managed = true, .amount = 5000, .floorLimit = 5000};
    const Risk listed{.onExceptionList = true};
    const Risk offline{.canGoOnline = false, .managed = true, .amount = 5000, .floorLimit = 5000};
    struct Case {
        Risk risk;
        Verified verified;
        First wish;
        unsigned draw;
        Decision decision;
        const char* results;
    };
    for (const auto& [risk, verified, wish, draw, decision, results] : {
             Case{small, {}, First::asAsked, 1, approved, ""},
             {small, {.signature = true}, First::asAsked, 1, approved, ""},
             {managed, {}, First::asAsked, late, approved, ""},
             {large, {}, First::asAsked, late, online, "0000008000"},
             {offline, {}, First::asAsked, late, declined, "0000008000"},
             {biased, {}, First::asAsked, 10, online, "0000001000"},
             {biased, {}, First::asAsked, 11, approved, ""},
             {listed, {}, First::asAsked, late, online, "1000000000"},
             {small, {.pinOnline = true}, First::asAsked, late, online, "0000040000"},
             {small, {.pinOffline = true, .pinErrors = 2}, First::asAsked, late, approved, ""},
             {small, {.failed = true, .pinBlocked = true}, First::online, late, declined, "0000A00000"},
             {small, {}, First::online, late, online, ""},
             {{.canGoOnline = false}, {}, First::online, late, declined, ""},
             {large, {}, First::declined, late, declined, "0000008000"},
         }) {
        DataObjects objects;
        EXPECT_EQ(first_decision(risk, verified, wish, draw, objects), decision) << results;
        EXPECT_EQ(to_hex(objects[tag::terminalResults]), results);
    }
}

TEST(Risk, FinalDecision) {
    using enum FinalDecision;
    using Second = Chip::Second;
    struct Case {
        Issuer issuer;
        Second wish;
        FinalDecision decision;
    };
    for (const auto& [issuer, wish, decision] : {
             Case{Issuer::approved, Second::asAsked, approved},
             {Issuer::approved, Second::approved, approved},
             {Issuer::approved, Second::declined, declinedByCard},
             {Issuer::declined, Second::asAsked, declinedByIssuer},
             {Issuer::declined, Second::approved, declinedByIssuer},
             {Issuer::unreachable, Second::asAsked, declinedByCard},
             {Issuer::unreachable, Second::approved, approved},
             {Issuer::unreachable, Second::declined, declinedByCard},
         }) {
        EXPECT_EQ(final_decision(issuer, wish), decision);
    }
}

}  // namespace

}  // namespace quorvel::sim
