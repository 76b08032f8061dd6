// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstring>
#include <string>

#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"
#include "tests/support/wire.h"
#include "wire/hex.h"

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

    int32_t power(AbecsCmdGen0401Oper_E oper, uint8_t slot) {
        const AbecsCmdGen0401CmdData request{oper, slot};
        return call(abecs_cmd_gen_04_01, &request, &slot_);
    }

    int32_t exchange(const AbecsCmdGen0402CmdData& request) { return call(abecs_cmd_gen_04_02, &request, &apdu_); }

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
        const Bytes blocks = from_hex(out.data);
        return tdes_decipher(key, std::string(blocks.begin(), blocks.end()));
    }

    AbecsCmdGen0401RspData slot_{};
    AbecsCmdGen0402RspData apdu_{};
    AbecsCmdGenTagsOut tags_{};
};

TEST_F(Gen, TellsWhereKeysAre) {
    char out[101] = "";
    const AbecsCmdGen02K3CmdData few{0, 0, 0, 3};
    EXPECT_EQ(call(abecs_cmd_gen_02_k3, &few, out), ABECS_RSP_STAT_ST_OK);
    EXPECT_STREQ(out, "1100");
    const AbecsCmdGen02K3CmdData all{3, 1, 0, 99};
    EXPECT_EQ(call(abecs_cmd_gen_02_k3, &all, out), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(out, "1" + std::string(99, '0'));
    retire();
}

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
    EXPECT_EQ(power(ABECS_CMD_GEN_04_01_OPER_1, 0), ABECS_RSP_STAT_ST_NOCARD);
    EXPECT_EQ(power(ABECS_CMD_GEN_04_01_OPER_1, 3), ABECS_RSP_STAT_ST_NOSAM);
    EXPECT_EQ(power(ABECS_CMD_GEN_04_01_OPER_1, 2), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(slot_.atrLen, 3);
    EXPECT_STREQ(slot_.atr, "3B0");
    pinPad_.insert(kCard);
    const AbecsCmdGen0402CmdData select{0, "00A40400", 7, "A0000000031010", 256};
    EXPECT_EQ(exchange(select), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(apdu_.status, 1);
    EXPECT_EQ(power(ABECS_CMD_GEN_04_01_OPER_1, 0), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(slot_.status1, 1);
    EXPECT_EQ(slot_.status2, 1U);
    EXPECT_EQ(slot_.atrLen, 9);
    EXPECT_STREQ(slot_.atr, "3B6500002");
    EXPECT_EQ(exchange(select), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(apdu_.status, 0);
    EXPECT_STREQ(apdu_.sw, "9000");
    EXPECT_EQ(apdu_.la, 16);
    EXPECT_STREQ(apdu_.apduData, "6F0E8407A0000000031010A50350015A");
    EXPECT_EQ(verify("1111"), "63C2");
    EXPECT_EQ(verify("1234"), "9000");
    EXPECT_EQ(power(ABECS_CMD_GEN_04_01_OPER_3, 0), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(slot_.status2, 0U);
    EXPECT_STREQ(slot_.atr, "");
    retire();
}

}  // namespace
