// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"
#include "tests/support/wire.h"

namespace {

using namespace quorvel::sim;
using namespace support::literals;

const Card kCard{.pan = "4111111111111111", .track2 = "4111111111111111=30121010000000000", .chip = Chip::standard()};

Device device_with_module() {
    Device device = Device::standard();
    device.modules[2] = Chip{.atr = from_hex("3B0011"), .script = {}};
    return device;
}

class Gen : public EndToEnd {
protected:
    Gen() : EndToEnd({.device = device_with_module()}) {}
    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK); }

    int32_t power(uint8_t slot) {
        const AbecsCmdGen0401CmdData request{ABECS_CMD_GEN_04_01_OPER_1, slot};
        return call(abecs_cmd_gen_04_01, &request, &slot_);
    }

    // What the chip says of the PIN.
    std::string verify(const char* pin) {
        const AbecsCmdGen0403CmdData request{0, "00200080", '2', 4, 12, "YOUR PIN"};
        AbecsCmdGen0403RspData verdict{};
        pinPad_.when("GEN", Gestures().type(pin));
        EXPECT_NO_RAISE(abecs_cmd_gen_04_03(link_, &request));
        EXPECT_EQ(call(abecs_cmd_gen_04_03_response, &verdict, nullptr), ABECS_RSP_STAT_ST_OK);
        return verdict.sw;
    }

    // What the PIN pad made of the data, deciphered.
    std::string enciphered(const AbecsCmdGen0303Data& input, const std::string& key, const char* ksn) {
        const AbecsCmdGen0303CmdData request{0, input};
        AbecsCmdGen0303RspData out{};
        EXPECT_EQ(call(abecs_cmd_gen_03_03, &request, &out), ABECS_RSP_STAT_ST_OK);
        EXPECT_STREQ(out.ksn, ksn);
        EXPECT_EQ(out.dataLen, input.size);
        return tdes_decipher(key, from_digits(out.data));
    }

    AbecsCmdGen0401RspData slot_{};
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

TEST_F(Gen, TalksToTheChipsInTheSlots) {
    EXPECT_EQ(power(0), ABECS_RSP_STAT_ST_NOCARD);
    EXPECT_EQ(power(3), ABECS_RSP_STAT_ST_NOSAM);
    EXPECT_EQ(power(2), ABECS_RSP_STAT_ST_OK);
    EXPECT_STREQ(slot_.atr, "3B0");
    pinPad_.insert(kCard);
    EXPECT_EQ(power(0), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(slot_.status1, 1);
    EXPECT_EQ(slot_.status2, 1U);
    const AbecsCmdGen0402CmdData select{0, "00A40400", 7, "A0000000031010", 256};
    AbecsCmdGen0402RspData apdu{};
    EXPECT_EQ(call(abecs_cmd_gen_04_02, &select, &apdu), ABECS_RSP_STAT_ST_OK);
    EXPECT_STREQ(apdu.sw, "9000");
    EXPECT_STREQ(apdu.apduData, "6F0E8407A0000000031010A50350015A");
    EXPECT_EQ(verify("1111"), "63C2");
    EXPECT_EQ(verify("1234"), "9000");
    retire();
}

}  // namespace
