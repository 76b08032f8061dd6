// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/dukpt.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

Ksn ksn_of(const std::string& hex) {
    Ksn ksn{};
    std::ranges::copy(from_hex(hex), ksn.begin());
    return ksn;
}

const Bytes baseKey = from_hex("0123456789ABCDEFFEDCBA9876543210");
const Bytes tdesInitialKey = from_hex("6AC292FAA1315B4D858AB3A3D7D5933A");
const Bytes desInitialKey = from_hex("6AC292FAA1315B4D");

struct Transaction {
    std::string ksn;
    std::string pinKey;
    std::string pinBlock;
};

// PIN 1234, PAN 4012345678909. Those of triple DES are the standard's own; those of DES and at the counter's end were
// worked out step by step with the openssl program.
const std::vector<Transaction> tdesTransactions{
    {"FFFF9876543210E00001", "042666B49184CF5C68DE9628D0397B36", "1B9C1845EB993A7A"},
    {"FFFF9876543210E00002", "C46551CEF9FD244FAA9AD834130D3B38", "10A01C8D02C69107"},
    {"FFFF9876543210E0000A", "6CF2500A22507C83C776CEADC1E330EB", "EDABBA23221833FE"},
    {"FFFF9876543210E00010", "59598DCBD9BD943F94165CE453585FA8", "D5D9638559EF53D6"},
    {"FFFF9876543210FFF800", "4124BC9650E70BEFDED3378C9F4E2EBD", "DF824244BD9C2926"},
};
const std::vector<Transaction> desTransactions{
    {"FFFF9876543210E00001", "35FDB4BBAEE6A293", "AE03BBC9A095DEFE"},
    {"FFFF9876543210E00002", "1A3CD4AB030F02BB", "8C753F84AA082CAA"},
    {"FFFF9876543210E00003", "1998AA279AA21032", "0F1CA7B85E92B918"},
    {"FFFF9876543210E00013", "932DA0370FDEACA8", "E691EC073CF80A09"},
    {"FFFF9876543210FFF800", "4DACBA8A219F01DA", "CBF5C14357DD42B3"},
};

void expect_transactions(const Bytes& initialKey, const std::vector<Transaction>& transactions) {
    const Bytes clearBlock = from_hex("041274EDCBA9876F");
    for (const auto& [ksn, pinKey, pinBlock] : transactions) {
        const Bytes key = dukpt::pin_key(dukpt::transaction_key(initialKey, ksn_of(ksn)));
        EXPECT_EQ(to_hex(key), pinKey) << ksn;
        EXPECT_EQ(to_hex(encipher(key, clearBlock)), pinBlock) << ksn;
    }
}

TEST(Dukpt, DerivesThePublishedKeys) {
    EXPECT_EQ(dukpt::initial_key(baseKey, ksn_of("FFFF9876543210E00000")), tdesInitialKey);
    EXPECT_EQ(dukpt::initial_key(baseKey, ksn_of("FFFF9876543210EFF800")), tdesInitialKey);
    EXPECT_THROW(static_cast<void>(dukpt::initial_key(desInitialKey, Ksn{})), std::invalid_argument);
    expect_transactions(tdesInitialKey, tdesTransactions);
    expect_transactions(desInitialKey, desTransactions);
}

TEST(Dukpt, EnciphersDataUnderAKeyOfItsOwn) {
    const Ksn ksn = ksn_of("FFFF9876543210E00001");
    const Bytes key = dukpt::data_key(dukpt::transaction_key(tdesInitialKey, ksn));
    EXPECT_EQ(to_hex(key), "448D3F076D8304036A55A3D7E0055A78");
    EXPECT_EQ(to_hex(encipher(key, from_hex("343031323334353637383930394439383700000000000000"), Bytes(8))),
              "FC0D53B7EA1FDA9EE68AAF2E70D9B9506229BE2AA993F04F");
    EXPECT_EQ(to_hex(dukpt::data_key(dukpt::transaction_key(desInitialKey, ksn))), "E806579543A7C401");
}

TEST(Dukpt, CountsOverNumbersWithMoreThanTenOnes) {
    const std::vector<std::pair<std::string, std::string>> steps{
        {"FFFF9876543210E00000", "FFFF9876543210E00001"}, {"FFFF9876543210E003FE", "FFFF9876543210E003FF"},
        {"FFFF9876543210E003FF", "FFFF9876543210E00400"}, {"FFFF9876543210E007FE", "FFFF9876543210E00800"},
        {"FFFF9876543210E00FFC", "FFFF9876543210E01000"}, {"FFFF9876543210EFFC00", "FFFF9876543210F00000"},
        {"0102030405060767F800", "0102030405060767F801"},
    };
    for (const auto& [from, to] : steps) {
        const auto next = dukpt::next(ksn_of(from));
        ASSERT_TRUE(next) << from;
        EXPECT_EQ(to_hex(*next), to);
    }
    EXPECT_FALSE(dukpt::next(ksn_of("FFFF9876543210FFF800")));
}

}  // namespace

}  // namespace quorvel::sim
