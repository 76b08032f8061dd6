// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"
#include "tests/support/wire.h"

namespace {

using namespace quorvel::sim;
using namespace support::literals;

const Card kCard{.pan = "4111111111111111", .track2 = "4111111111111111=30121010000000000", .chip = Chip::standard()};

class Gen : public EndToEnd {
protected:
    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK); }

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

// The keys of DUKPT are the published ones for data of the first two transactions.
TEST_F(Gen, EnciphersDataThatComeInClearOrPreparedForThePanKey) {
    const std::string clear = "4111111111111111 0011223344556677"_hex;
    const AbecsCmdGen0303Data input{32, "41111111111111110011223344556677"};
    EXPECT_EQ(enciphered(input, "448D3F076D830403 6A55A3D7E0055A78"_hex, "FFFF9876543210E00001"), clear);
    AbecsWkPan key{};
    EXPECT_EQ(call(abecs_cmd_dwk2, &key, true), ABECS_RSP_STAT_ST_OK);
    AbecsCmdGen0303Data prepared{};
    EXPECT_NO_RAISE(abecs_cmd_gen_03_03_encode_data(&input, &key, &prepared));
    EXPECT_EQ(enciphered(prepared, "F1BE73B36135C5C2 6CF937D50ABBE5AF"_hex, "FFFF9876543210E00002"), clear);
    retire();
}

TEST_F(Gen, ReadsTheDataObjectsOfTheCardReadLastAndOfTheCardThatIsThere) {
    EXPECT_EQ(call(abecs_cmd_gen_03_02, "5A", &tags_), ABECS_RSP_STAT_ST_NOCARD);
    AbecsRspParamMap* items = abecs_rsp_param_map_new();
    begin("CEX", Gestures().swipe(kCard), abecs_cmd_cex, "010000", nullptr, nullptr);
    EXPECT_EQ(call(abecs_cmd_cex_response, items, nullptr), ABECS_RSP_STAT_ST_OK);
    kor_map_delete(&items);
    EXPECT_EQ(call(abecs_cmd_gen_03_02, "829f175a", &tags_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(tags_.len, 36);
    EXPECT_STREQ(tags_.data, "820238009F1701035A084111111111111111");
    EXPECT_EQ(call(abecs_cmd_gen_04_04, "9F17", &tags_), ABECS_RSP_STAT_ST_NOCARD);
    pinPad_.insert(kCard);
    EXPECT_EQ(call(abecs_cmd_gen_04_04, "9f029f17", &tags_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(tags_.len, 4);
    EXPECT_STREQ(tags_.data, "9F170103");
    retire();
}

}  // namespace
