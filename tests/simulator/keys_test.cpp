// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>

#include "simulator/keys/dukpt.h"
#include "simulator/keys/key_store.h"
#include "simulator/keys/pan_cipher.h"
#include "tests/simulator/fixture.h"
#include "wire/hex.h"

using namespace quorvel::sim;

namespace {

using enum KeyStrength;
using enum KeyUse;

const Bytes kBaseKey = from_hex("0123456789ABCDEFFEDCBA9876543210");
const Bytes kInitialKey = from_hex("6AC292FAA1315B4D858AB3A3D7D5933A");

Ksn ksn_of(const std::string& hex) {
    Ksn ksn{};
    std::ranges::copy(from_hex(hex), ksn.begin());
    return ksn;
}

// Those of triple DES are the published ones; those of DES and at the counter's end were worked out step by step with
// the openssl program.
TEST(Dukpt, DerivesTheKeysOfCountersWithSeveralOnes) {
    EXPECT_EQ(dukpt::initial_key(kBaseKey, ksn_of("FFFF9876543210EFF800")), kInitialKey);
    EXPECT_THROW(static_cast<void>(dukpt::initial_key(from_hex("6AC292FAA1315B4D"), Ksn{})), std::invalid_argument);
    for (const auto& [size, ksn, due] : {
             std::tuple(16, "FFFF9876543210E0000A", "6CF2500A22507C83C776CEADC1E330EB"),
             {16, "FFFF9876543210FFF800", "4124BC9650E70BEFDED3378C9F4E2EBD"},
             {8, "FFFF9876543210E00013", "932DA0370FDEACA8"},
             {8, "FFFF9876543210FFF800", "4DACBA8A219F01DA"},
         }) {
        const Bytes initial(kInitialKey.begin(), kInitialKey.begin() + size);
        EXPECT_EQ(to_hex(dukpt::pin_key(dukpt::transaction_key(initial, ksn_of(ksn)))), due);
    }
}

TEST(Dukpt, CountsOverNumbersWithMoreThanTenOnes) {
    const std::pair<const char*, const char*> steps[]{
        {"FFFF9876543210E003FE", "FFFF9876543210E003FF"}, {"FFFF9876543210E007FE", "FFFF9876543210E00800"},
        {"FFFF9876543210E00FFC", "FFFF9876543210E01000"}, {"FFFF9876543210EFFC00", "FFFF9876543210F00000"},
        {"0102030405060767F800", "0102030405060767F801"},
    };
    for (const auto& [from, to] : steps) { EXPECT_EQ(dukpt::next(ksn_of(from)), ksn_of(to)) << from; }
    EXPECT_FALSE(dukpt::next(ksn_of("FFFF9876543210FFF800")));
}

TEST(KeyStore, CountsEachKeyOnUntilItIsSpent) {
    KeyStore keys = KeyStore::from_toml(R"(
        [[master]]
        strength = "tdes"
        use = "data"
        index = 99
        key = "00112233445566778899aabbccddeeff"
        [[dukpt]]
        strength = "des"
        use = "pin"
        index = 5
        base_key = "0123456789ABCDEFFEDCBA9876543210"
        ksn = "FFFF9876543210E00001"
        [[dukpt]]
        strength = "tdes"
        use = "data"
        index = 6
        initial_key = "6AC292FAA1315B4D858AB3A3D7D5933A"
        ksn = "FFFF9876543210FFF000"
    )");
    const auto desPin = keys.next_dukpt(kDes, kPin, 5);
    ASSERT_TRUE(desPin);
    EXPECT_EQ(to_hex(desPin->key), "1A3CD4AB030F02BB");
    EXPECT_EQ(to_hex(desPin->ksn), "FFFF9876543210E00002");
    EXPECT_EQ(keys.ksn(kDes, kPin, 5), desPin->ksn);
    // Ten more transactions lie between the last two counters with nine and ten ones.
    int transactions = 0;
    while (keys.next_dukpt(kTdes, kData, 6)) { ++transactions; }
    EXPECT_EQ(transactions, 12);
    EXPECT_EQ(keys.ksn(kTdes, kData, 6), ksn_of("FFFF9876543210FFF800"));
    EXPECT_FALSE(keys.next_dukpt(kTdes, kPin, 6));
}

TEST(KeyStore, SaysWhatIsWrongWithAFile) {
    const std::string head = "[[master]]\nstrength = 'des'\nuse = 'pin'\n";
    const std::string dukpt = "[[dukpt]]\nstrength = 'tdes'\nuse = 'pin'\nindex = 0\n";
    for (const auto& [text, fault] : {
             std::pair<std::string, std::string>("master = 1", "line 1: master: no list of tables"),
             {"[[keys]]", "line 1: keys: there is no such key"},
             {head + "key = '0011223344556677'", "line 1: master.index: is missing"},
             {"\n" + head + "index = 100\nkey = '0011223344556677'", "line 5: master.index: 100 is not from 0 to 99"},
             {head + "index = 0\nkey = '00112233445566'", "line 5: master.key: a key of 7 bytes instead of 8"},
             {head + "index = 0\nkey = '001122334455667G'", "line 5: master.key: no hexadecimal digit at position 14"},
             {"[[master]]\nstrength = 'aes'\nuse = 'pin'", "line 2: master.strength: \"aes\" is none of its values"},
             {dukpt + "base_key = '00'\nksn = 'FFFF98'", "line 6: dukpt.ksn: 3 bytes instead of 10"},
             {dukpt + "initial_key = '00'\nksn = 'FFFF9876543210E00000'",
              "line 5: dukpt.initial_key: a key of 1 bytes instead of 16"},
         }) {
        EXPECT_EQ(thrown([&, &wrong = text] { static_cast<void>(KeyStore::from_toml(wrong)); }), fault);
    }
}

TEST(PanCipher, EnciphersTheLastSixteenDigitsThatCanBeReadBack) {
    const Bytes desKey = from_hex("0123456789ABCDEF");
    const std::pair<const char*, const char*> cases[]{
        {"4111111111111111000", "411C72178BF8F10A06D"},
        {"B4111111111111111^CARD/TEST^3012101", "BF0157C5DA1787BED^CARD/TEST^3012101"},
        {"B401 345678909012^CARD/TEST^3012101", "BA4FB4F358AA544D9^CARD/TEST^3012101"},
        {"B4012345678909^CARD/TEST^3012101", "B4E1E24ECCBB74E3E^CARD/TEST^3012101"},
    };
    for (const auto& [clear, due] : cases) { EXPECT_EQ(protect_pan(clear, desKey), due); }
    for (const char* left :
         {"123456789012", "123456789012=3012", "%B4111111111111111^CARD/TEST^3012", "41111111111X1111", "=3012", ""}) {
        EXPECT_EQ(protect_pan(left, desKey), left);
    }
    EXPECT_EQ(protect_pan("4012345678909", kBaseKey), "1C07A6B60270A018");
    // A host deciphers the digits before it sends them.
    EXPECT_EQ(expose_pan("2C53F02A871D1AF8", desKey), "4012345678909");
    EXPECT_EQ(expose_pan("64B02AE35D82E5CE", kBaseKey), "4111111111111111");
    for (const char* pan : {"4111111111111111", "123456789012", ""}) { EXPECT_EQ(expose_pan(pan, desKey), pan); }
}

}  // namespace
