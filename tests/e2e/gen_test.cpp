// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"

namespace {

using namespace quorvel::sim;

class Gen : public SecureEndToEnd {
protected:
    // What the PIN pad made of the data, deciphered.
    std::string enciphered(const AbecsCmdGen0303Data& input, const std::string& key, const char* ksn) {
        const AbecsCmdGen0303CmdData request{0, input};
        AbecsCmdGen0303RspData out{};
        EXPECT_EQ(call(abecs_cmd_gen_03_03, &request, &out), ABECS_RSP_STAT_ST_OK);
        EXPECT_STREQ(out.ksn, ksn);
        EXPECT_EQ(out.dataLen, input.size);
        return tdes_decipher(key, from_digits(out.data));
    }

    AbecsCmdGenTagsOut tags_{};
};

TEST_F(Gen, EnciphersDataThatComeInClearOrPreparedForThePanKey) {
    const std::string clear = "4111111111111111 0011223344556677"_hex;
    const AbecsCmdGen0303Data input{32, "41111111111111110011223344556677"};
    EXPECT_EQ(enciphered(input, kDataKeys[0], "FFFF9876543210E00001"), clear);
    AbecsWkPan key{};
    EXPECT_EQ(call(abecs_cmd_dwk2, &key, true), ABECS_RSP_STAT_ST_OK);
    AbecsCmdGen0303Data prepared{};
    EXPECT_NO_RAISE(abecs_cmd_gen_03_03_encode_data(&input, &key, &prepared));
    EXPECT_EQ(enciphered(prepared, kDataKeys[1], "FFFF9876543210E00002"), clear);
}

TEST_F(Gen, ReadsTheDataObjectsOfTheCardReadLastAndOfTheCardThatIsThere) {
    EXPECT_EQ(call(abecs_cmd_gen_03_02, "5A", &tags_), ABECS_RSP_STAT_ST_NOCARD);
    swipe(kCard);
    EXPECT_EQ(call(abecs_cmd_gen_03_02, "829f175a", &tags_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(tags_.len, 36);
    EXPECT_STREQ(tags_.data, "820238009F1701035A084111111111111111");
    EXPECT_EQ(call(abecs_cmd_gen_04_04, "9F17", &tags_), ABECS_RSP_STAT_ST_NOCARD);
    pinPad_.insert(kCard);
    EXPECT_EQ(call(abecs_cmd_gen_04_04, "9f029f17", &tags_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(tags_.len, 4);
    EXPECT_STREQ(tags_.data, "9F170103");
}

}  // namespace
