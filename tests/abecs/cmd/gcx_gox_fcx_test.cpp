// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

const std::string kMoment = "0015 0006 323531323331 0016 0006 323335393539"_hex;
const AbecsEmvData kEmvData{{0x9F, 0x02}, 2};
const AbecsTagList kTagList{{0x82, 0x95, 0x9A}, 3};

class Gcx : public Built<AbecsCmdGcxBuilder, abecs_cmd_gcx_builder_delete, abecs_cmd_gcx> {
protected:
    Gcx() { builder_ = abecs_cmd_gcx_builder_new("251231", "235959"); }
};

TEST_F(Gcx, SendsWhatWasSetInTheOrderOfTheCalls) {
    const uint8_t appTypes[] = {1, 98};
    set(abecs_cmd_gcx_builder_trntype, 0x16);
    set(abecs_cmd_gcx_builder_acqref, 99);
    set(abecs_cmd_gcx_builder_apptype, appTypes, 2);
    set(abecs_cmd_gcx_builder_aidlist, "010299zA");
    set(abecs_cmd_gcx_builder_amount, 999999999999);
    set(abecs_cmd_gcx_builder_cashback, 0);
    set(abecs_cmd_gcx_builder_trncurr, 999);
    set(abecs_cmd_gcx_builder_gcxopt, "10000");
    set(abecs_cmd_gcx_builder_panmask, "0604");
    set(abecs_cmd_gcx_builder_emvdata, &kEmvData);
    set(abecs_cmd_gcx_builder_taglist, &kTagList);
    set(abecs_cmd_gcx_builder_timeout, 0x17);
    set(abecs_cmd_gcx_builder_dspmsg, "INSERT\rCARD");
    expect_sent("GCX140" + kMoment + "0021 0001 16 0010 0002"_hex + "99" + "0011 0004"_hex + "0198" + "0012 0008"_hex
                + "010299zA" + "0013 000C"_hex + "999999999999" + "0014 000C"_hex + "000000000000" + "0022 0003"_hex
                + "999" + "0017 0005"_hex + "10000" + "0023 0004"_hex + "0604" + "0005 0002 9F02 0004 0003 82959A"_hex
                + "000C 0001 17 001B 000B"_hex + "INSERT\rCARD");
    set(abecs_cmd_gcx_builder_reset, "251231", "235959");
    expect_sent("GCX020" + kMoment);
}

// The list of records leaves no room for the data in the first block; what is shorter still goes there.
TEST_F(Gcx, TakesTheLongestArgumentsInTwoBlocks) {
    const uint8_t appTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const AbecsEmvData emvData{{0x5F}, 512};
    const AbecsTagList tagList{{}, 128};
    const std::string records = repeated("0101", 128);
    const std::string message(128, '\xC7');
    set(abecs_cmd_gcx_builder_aidlist, records.c_str());
    set(abecs_cmd_gcx_builder_emvdata, &emvData);
    set(abecs_cmd_gcx_builder_apptype, appTypes, 10);
    set(abecs_cmd_gcx_builder_taglist, &tagList);
    set(abecs_cmd_gcx_builder_dspmsg, message.c_str());
    expect_sent("GCX824" + kMoment + "0012 0200"_hex + records + "0011 0014"_hex + "01020304050607080910"
                + "0004 0080"_hex + std::string(128, '\0') + "001B 0080"_hex + message + "516" + "0005 0200 5F"_hex
                + std::string(511, '\0'));
}

TEST_F(Gcx, ChecksEveryArgumentInOrder) {
    const uint8_t appTypes[11] = {98, 99};
    const AbecsEmvData emvData{{}, 513};
    const AbecsTagList tagList{{}, 129};
    refused("Invalid 'acqRef' (maximum: 99, requested: 100)", abecs_cmd_gcx_builder_acqref, 100);
    refused("'appTypes' is NULL", abecs_cmd_gcx_builder_apptype, nullptr, 0);
    refused("invalid value for 'szAppTypes': 11 (min: 1, max: 10)", abecs_cmd_gcx_builder_apptype, appTypes, 11);
    refused("invalid value for 'appTypes[1]: 99 (min: 1, max: 98)", abecs_cmd_gcx_builder_apptype, appTypes, 2);
    refused("invalid value for 'appTypes[0]: 0 (min: 1, max: 98)", abecs_cmd_gcx_builder_apptype, appTypes + 2, 1);
    const auto list = abecs_cmd_gcx_builder_aidlist;
    refused("'aidRecords' is NULL", list, nullptr);
    refused("Invalid length for for 'aidRecords': 5 (must be a multiple of 4)", list, "AB01x");
    refused("Invalid number of records 'aidRecords': 129 (min: 1, max: 128)", list, repeated("0101", 129).c_str());
    refused("Invalid acquirer identifier at index 0: \"AB\"", list, "AB-1");
    refused("Invalid record at index 1: 0x41 0xe9", list, "010101A\xE9");
    refused("Invalid 'trnCurr' (maximum: 999, requested: 1000)", abecs_cmd_gcx_builder_trncurr, 1000);
    refused("'gcxOpt' is NULL", abecs_cmd_gcx_builder_gcxopt, nullptr);
    refused("'gcxOpt' is too long (maximum: 5, requested: 6)", abecs_cmd_gcx_builder_gcxopt, "10000A");
    refused("panMask: invalid char (0x2E) at index 2", abecs_cmd_gcx_builder_panmask, "06.4");
    refused("'emvData' is NULL", abecs_cmd_gcx_builder_emvdata, nullptr);
    refused("'emvData->szData' is too long (size: 513, maximum: 512)", abecs_cmd_gcx_builder_emvdata, &emvData);
    refused("'tagList' is NULL", abecs_cmd_gcx_builder_taglist, nullptr);
    refused("'tagList' is too long (size: 129, maximum: 128)", abecs_cmd_gcx_builder_taglist, &tagList);
    const auto message = abecs_cmd_gcx_builder_dspmsg;
    refused("'dspMsg' is NULL", message, nullptr);
    refused("'dspMsg' is too long (length: 129, max: 128)", message, std::string(129, 'x').c_str());
    refuses("'builder' is NULL", abecs_cmd_gcx, nullptr);
    expect_sent("GCX020" + kMoment);
}

TEST_F(Gcx, ARefusedResetLeavesTheBuilder) {
    set(abecs_cmd_gcx_builder_trntype, 1);
    refused("'trnDate' is NULL", abecs_cmd_gcx_builder_reset, nullptr, "1");
    refused("'trnTime' is NULL", abecs_cmd_gcx_builder_reset, "1", nullptr);
    refused("trnTime: invalid char (0x3A) at index 2", abecs_cmd_gcx_builder_reset, "251231", "23:59A");
    expect_sent("GCX025" + kMoment + "0021 0001 01"_hex);
    EXPECT_REFUSED(kArgument, "'trnDate' is too long (maximum: 6, requested: 8)",
                   abecs_cmd_gcx_builder_new("20251231", "235959"));
    EXPECT_REFUSED(kArgument, "'trnTime' is NULL", abecs_cmd_gcx_builder_new("251231", nullptr));
}

// Which first holds something else.
TEST_F(Gcx, CopiesTheAnswerIntoTheMap) {
    map_.put(1);
    polls("GCX000018" + "804F 0002 3033 8052 0000 8050 0004 00011617"_hex, kOk, abecs_cmd_gcx_response, map_.get(),
          nullptr);
    ASSERT_EQ(map_.items(), (ParamMap::Items{{0x804F, "03"}, {0x8052, ""}, {0x8050, "00011617"_hex}}));
    EXPECT_EQ(abecs_rsp_param_map_get(map_.get(), 0x804F)->data[2], '\0') << "a zero stands behind the value";
}

constexpr uint8_t kKey[16] = {0x13, 0x16, 0x17, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const std::string kFirst = "0010 0002 3034 0002 0001 33 0009 0002 3132"_hex;

AbecsSpeMthdPin_E method(int32_t value) { return static_cast<AbecsSpeMthdPin_E>(value); }

class Gox : public Built<AbecsCmdGoxBuilder, abecs_cmd_gox_builder_delete, abecs_cmd_gox> {
protected:
    Gox() { builder_ = abecs_cmd_gox_builder_new(4, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 12); }
};

TEST_F(Gox, SendsWhatWasSetInTheOrderOfTheCalls) {
    set(abecs_cmd_gox_builder_timeout, 0);
    set(abecs_cmd_gox_builder_taglist, &kTagList);
    set(abecs_cmd_gox_builder_emvdata, &kEmvData);
    set(abecs_cmd_gox_builder_trmpar, kKey);
    set(abecs_cmd_gox_builder_dspmsg, "");
    set(abecs_cmd_gox_builder_goxopt, "01234");
    set(abecs_cmd_gox_builder_trncurr, 986);
    set(abecs_cmd_gox_builder_cashback, 100);
    set(abecs_cmd_gox_builder_amount, 12345);
    set(abecs_cmd_gox_builder_trntype, 9);
    expect_sent("GOX106" + kFirst + "000C 0001 00 0004 0003 82959A 0005 0002 9F02"_hex
                + "001A 000A 1316 1704 0506 0708 090A 001B 0000 0018 0005"_hex + "01234" + "0022 0003"_hex + "986"
                + "0014 000C"_hex + "000000000100" + "0013 000C"_hex + "000000012345" + "0021 0001 09"_hex);
}

TEST_F(Gox, NeedsTheWorkingKeyOfItsMethod) {
    const std::string sizes[] = {"(expected: 8, available: 16)", "(expected: 16, available: 8)"};
    const std::string requests[] = {
        "GOX029" + "0010 0002 3939 0002 0001 30 0009 0002 3939 000A 0008 1316 1704 0506 0708"_hex,
        "GOX037" + "0010 0002 3939 0002 0001 31 0009 0002 3939 000A 0010 1316 1704 0506 0708 090A 0B0C 0D0E 0F10"_hex};
    for (const int32_t i : {0, 1}) {
        const size_t size = i == 0 ? 8 : 16;
        set(abecs_cmd_gox_builder_reset, 99, method(i), 99);
        refused("'wkenc' is NULL", abecs_cmd_gox_builder_wkenc, nullptr, 24 - size);
        refused("'szWkenc' is invalid " + sizes[i], abecs_cmd_gox_builder_wkenc, kKey, 24 - size);
        expect_incomplete(error(kState, "SPE_WKENC not set"));
        set(abecs_cmd_gox_builder_wkenc, kKey, size);
        expect_sent(requests[i]);
    }
    for (const int32_t i : {2, 3}) {
        set(abecs_cmd_gox_builder_reset, 99, method(i), 99);
        const std::string name = i == 2 ? "ABECS_SPE_MTHD_PIN_DUKPT_DES" : "ABECS_SPE_MTHD_PIN_DUKPT_TDES";
        refused(error(kState, "PIN encryption method (" + name + ") does not use SPE_WKENC parameter"),
                abecs_cmd_gox_builder_wkenc, nullptr, 0);
    }
}

TEST_F(Gox, ChecksEveryArgumentInOrder) {
    const auto reset = abecs_cmd_gox_builder_reset;
    refused("Invalid 'acqRef': 100 (min: 0, max: 99)", reset, 100, method(4), 100);
    refused("Invalid enumerator for AbecsSpeMthdPin_E: 4", reset, 99, method(4), 100);
    refused("Invalid 'keyIdx': 100 (min: 0, max: 99)", reset, 99, method(0), 100);
    refused("goxOpt: invalid char (0x61) at index 4", abecs_cmd_gox_builder_goxopt, "0123a");
    refused("'trmPar' is NULL", abecs_cmd_gox_builder_trmpar, nullptr);
    expect_sent("GOX017" + kFirst);
}

class Fcx : public Built<AbecsCmdFcxBuilder, abecs_cmd_fcx_builder_delete, abecs_cmd_fcx> {
protected:
    Fcx() { builder_ = abecs_cmd_fcx_builder_new("1999"); }
};

TEST_F(Fcx, SendsWhatWasSetInTheOrderOfTheCalls) {
    set(abecs_cmd_fcx_builder_timeout, 0x16);
    set(abecs_cmd_fcx_builder_taglist, &kTagList);
    set(abecs_cmd_fcx_builder_arc, "0A");
    set(abecs_cmd_fcx_builder_emvdata, &kEmvData);
    expect_sent("FCX032" + "0019 0004 31393939 000C 0001 16 0004 0003 82959A 001C 0002 3041 0005 0002 9F02"_hex);
}

TEST_F(Fcx, NeedsTheResponseCodeOfAnAcquirerThatWasReached) {
    for (const char first : std::string("0123456789")) {
        const std::string options = first + std::string("000");
        set(abecs_cmd_fcx_builder_reset, options.c_str());
        if (first < '2') {
            expect_incomplete("'SPE_ARC' was not defined");
            set(abecs_cmd_fcx_builder_arc, "Z1");
            expect_sent("FCX014" + "0019 0004"_hex + options + "001C 0002"_hex + "Z1");
        } else {
            refused(error(kState, "SPE_ARC is not required"), abecs_cmd_fcx_builder_arc, "00");
            expect_sent("FCX008" + "0019 0004"_hex + options);
        }
    }
}

TEST_F(Fcx, ChecksEveryArgumentInOrder) {
    set(abecs_cmd_fcx_builder_reset, "2000");
    refused("'fcxOpt' is NULL", abecs_cmd_fcx_builder_reset, nullptr);
    refused("'fcxOpt' is too long (maximum: 4, requested: 5)", abecs_cmd_fcx_builder_reset, "0000x");
    refused("'arc' is NULL", abecs_cmd_fcx_builder_arc, nullptr);
    refused("Invalid length of 'arc': 3 (expected: 2)", abecs_cmd_fcx_builder_arc, "0-0");
    refused("arc[1] is invalid: 0x2D", abecs_cmd_fcx_builder_arc, "0-");
    refused("arc[0] is invalid: 0xE9", abecs_cmd_fcx_builder_arc, "\xE9-");
    expect_sent("FCX008" + "0019 0004 32303030"_hex);
}

}  // namespace
