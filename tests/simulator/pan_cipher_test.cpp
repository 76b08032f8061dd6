// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/pan_cipher.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

const Bytes desKey = from_hex("0123456789ABCDEF");
const Bytes tdesKey = from_hex("0123456789ABCDEFFEDCBA9876543210");

struct Row {
    std::string clear;
    const Bytes& key;
    std::string enciphered;
};

const std::vector<Row> rows{
    {"4111111111111111", desKey, "F0157C5DA1787BED"},
    {"4111111111111111", tdesKey, "69D9405C8462F410"},
    {"4111111111111111000", desKey, "411C72178BF8F10A06D"},
    {"4012345678909", tdesKey, "1C07A6B60270A018"},
    {"4111111111111111=30121010000000000", tdesKey, "69D9405C8462F410=30121010000000000"},
    {"B4111111111111111^CARD/TEST^3012101", desKey, "BF0157C5DA1787BED^CARD/TEST^3012101"},
    {"B401 345678909012^CARD/TEST^3012101", desKey, "BA4FB4F358AA544D9^CARD/TEST^3012101"},
    {"B4012345678909^CARD/TEST^3012101", desKey, "B4E1E24ECCBB74E3E^CARD/TEST^3012101"},
    // What cannot be read back stays.
    {"123456789012", desKey, "123456789012"},
    {"123456789012=3012", desKey, "123456789012=3012"},
    {"%B4111111111111111^CARD/TEST^3012", desKey, "%B4111111111111111^CARD/TEST^3012"},
    {"41111111111X1111", desKey, "41111111111X1111"},
    {"=3012", desKey, "=3012"},
    {"", desKey, ""},
};

TEST(PanCipher, EnciphersTheLastSixteenDigits) {
    for (const auto& [clear, key, enciphered] : rows) EXPECT_EQ(protect_pan(clear, key), enciphered);
}

// A host deciphers the digits before it sends them.
TEST(PanCipher, ReadsWhatTheHostSends) {
    const std::vector<Row> sent{
        {"4111111111111111", desKey, "BEC8C7B720B1ED83"}, {"4111111111111111", tdesKey, "64B02AE35D82E5CE"},
        {"4012345678909", desKey, "2C53F02A871D1AF8"},    {"4111111111111111", desKey, "4111111111111111"},
        {"123456789012", desKey, "123456789012"},         {"", desKey, ""},
    };
    for (const auto& [clear, key, pan] : sent) EXPECT_EQ(expose_pan(pan, key), clear) << pan;
}

}  // namespace

}  // namespace quorvel::sim
