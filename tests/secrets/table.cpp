// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/secrets/table.h"

#include <algorithm>

#include "quorvel/abecs/pan.h"
#include "tests/support/wire.h"

namespace secrets {

namespace {

// The texts that the library keeps until the next call, so that no row finds what another one left.
void forget_results() {
    const AbecsWkPan key{};
    abecs_pan_encrypt("", &key);
    abecs_pan_decrypt_track("", &key);
    abecs_pan_identify("");
}

}  // namespace

TEST_P(Secrets, AreWiped) { expect(GetParam()); }

void expect(const Row& row) {
    std::vector<std::string> wiped = row.wiped;
    std::sort(wiped.begin(), wiped.end());
    std::vector<support::Raised> raised;
    if (row.raised != support::Raised{}) { raised.push_back(row.raised); }
    for (const Raising raising : {Raising::kCaught, Raising::kReturning}) {
        SCOPED_TRACE(raising == Raising::kCaught ? "caught" : "returning");
        forget_results();
        const Row::Call call = row.prepare();
        const Seen seen = watch(row.secrets, raising, call);
        EXPECT_EQ(seen.raised, raised);
        EXPECT_EQ(seen.wiped, wiped);
        EXPECT_EQ(seen.left, row.left);
    }
}

const Secret& number() {
    static const Secret secret = of_digits("number", kNumber);
    return secret;
}

const Secret& key() {
    static const Secret secret = of_digits("key", kKey);
    return secret;
}

std::string from_digits(std::string_view digits) { return support::operator""_hex(digits.data(), digits.size()); }

}  // namespace secrets
