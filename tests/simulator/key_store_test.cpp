// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/key_store.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

using enum KeyStrength;
using enum KeyUse;

const std::string file = R"(
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
)";

TEST(KeyStore, CountsEachKeyOnUntilItIsSpent) {
    KeyStore keys = KeyStore::from_toml(file);
    const auto desPin = keys.next_dukpt(des, pin, 5);
    ASSERT_TRUE(desPin);
    EXPECT_EQ(to_hex(desPin->key), "1A3CD4AB030F02BB");
    EXPECT_EQ(to_hex(desPin->ksn), "FFFF9876543210E00002");
    EXPECT_EQ(keys.ksn(des, pin, 5), desPin->ksn);
    // Ten more transactions lie between the last two counters with nine and ten ones.
    int transactions = 0;
    while (keys.next_dukpt(tdes, data, 6)) ++transactions;
    EXPECT_EQ(transactions, 12);
    EXPECT_EQ(to_hex(keys.ksn(tdes, data, 6).value()), "FFFF9876543210FFF800");
    EXPECT_FALSE(keys.next_dukpt(tdes, pin, 6));
}

TEST(KeyStore, SaysWhatIsWrongWithAFile) {
    const std::string head = "[[master]]\nstrength = \"des\"\nuse = \"pin\"\n";
    const std::string dukpt = "[[dukpt]]\nstrength = \"tdes\"\nuse = \"pin\"\nindex = 0\n";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"master = 1", "line 1: master: no list of tables"},
        {"[[keys]]", "line 1: keys: there is no such key"},
        {head + "key = \"0011223344556677\"", "line 1: master.index: is missing"},
        {"\n" + head + "index = 100\nkey = \"0011223344556677\"", "line 5: master.index: 100 is not from 0 to 99"},
        {head + "index = 0\nkey = \"00112233445566\"", "line 5: master.key: a key of 7 bytes instead of 8"},
        {head + "index = 0\nkey = \"001122334455667G\"", "line 5: master.key: no hexadecimal digit at position 14"},
        {"[[master]]\nstrength = \"aes\"\nuse = \"pin\"", "line 2: master.strength: \"aes\" is none of its values"},
        {dukpt + "base_key = \"00\"\nksn = \"FFFF98\"", "line 6: dukpt.ksn: 3 bytes instead of 10"},
        {dukpt + "initial_key = \"00\"\nksn = \"FFFF9876543210E00000\"",
         "line 5: dukpt.initial_key: a key of 1 bytes instead of 16"},
    };
    for (const auto& [text, fault] : cases) {
        try {
            static_cast<void>(KeyStore::from_toml(text));
            ADD_FAILURE() << text;
        } catch (const std::runtime_error& error) { EXPECT_EQ(error.what(), fault); }
    }
    EXPECT_THROW(static_cast<void>(KeyStore::from_toml("[[master")), std::runtime_error);
}

}  // namespace

}  // namespace quorvel::sim
