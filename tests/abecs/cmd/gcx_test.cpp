// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcx.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using support::repeated;

const std::string kMoment = "0015 0006 323531323331 0016 0006 323335393539"_hex;

class Gcx : public support::BuiltCommand<AbecsCmdGcxBuilder, abecs_cmd_gcx_builder_delete, abecs_cmd_gcx,
                                         abecs_cmd_gcx_response> {
protected:
    Gcx() { builder_ = abecs_cmd_gcx_builder_new("251231", "235959"); }
};

TEST_F(Gcx, SendsWhatWasSetInTheOrderOfTheCalls) {
    const uint8_t appTypes[] = {1, 98};
    const AbecsEmvData emvData{{0x9F, 0x02}, 2};
    const AbecsTagList tagList{{0x82, 0x95, 0x9A}, 3};
    expect_sent("GCX020" + kMoment);
    set(abecs_cmd_gcx_builder_trntype, 0x16);
    set(abecs_cmd_gcx_builder_acqref, 99);
    set(abecs_cmd_gcx_builder_apptype, appTypes, 2);
    set(abecs_cmd_gcx_builder_aidlist, "010299zA");
    set(abecs_cmd_gcx_builder_amount, 999999999999);
    set(abecs_cmd_gcx_builder_cashback, 0);
    set(abecs_cmd_gcx_builder_trncurr, 999);
    set(abecs_cmd_gcx_builder_gcxopt, "10000");
    set(abecs_cmd_gcx_builder_panmask, "0604");
    set(abecs_cmd_gcx_builder_emvdata, &emvData);
    set(abecs_cmd_gcx_builder_taglist, &tagList);
    set(abecs_cmd_gcx_builder_timeout, 0x17);
    set(abecs_cmd_gcx_builder_dspmsg, "INSERT\rCARD");
    expect_sent("GCX140" + kMoment + "0021 0001 16 0010 0002"_hex + "99" + "0011 0004"_hex + "0198" + "0012 0008"_hex
                + "010299zA" + "0013 000C"_hex + "999999999999" + "0014 000C"_hex + "000000000000" + "0022 0003"_hex
                + "999" + "0017 0005"_hex + "10000" + "0023 0004"_hex + "0604" + "0005 0002 9F02 0004 0003 82959A"_hex
                + "000C 0001 17 001B 000B"_hex + "INSERT\rCARD");
    set(abecs_cmd_gcx_builder_reset, "251231", "235959");
    expect_sent("GCX020" + kMoment);
    set(abecs_cmd_gcx_builder_amount, 6);
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
    const std::string message(129, 'x');
    const std::string records = repeated("0101", 129);
    refused(2, "Invalid 'acqRef' (maximum: 99, requested: 100)", abecs_cmd_gcx_builder_acqref, 100);
    refused(2, "'appTypes' is NULL", abecs_cmd_gcx_builder_apptype, nullptr, 0);
    refused(2, "invalid value for 'szAppTypes': 0 (min: 1, max: 10)", abecs_cmd_gcx_builder_apptype, appTypes, 0);
    refused(2, "invalid value for 'szAppTypes': 11 (min: 1, max: 10)", abecs_cmd_gcx_builder_apptype, appTypes, 11);
    refused(2, "invalid value for 'appTypes[1]: 99 (min: 1, max: 98)", abecs_cmd_gcx_builder_apptype, appTypes, 2);
    refused(2, "invalid value for 'appTypes[0]: 0 (min: 1, max: 98)", abecs_cmd_gcx_builder_apptype, appTypes + 2, 1);
    const auto list = abecs_cmd_gcx_builder_aidlist;
    refused(2, "'aidRecords' is NULL", list, nullptr);
    refused(2, "Invalid length for for 'aidRecords': 5 (must be a multiple of 4)", list, "AB01x");
    refused(2, "Invalid number of records 'aidRecords': 0 (min: 1, max: 128)", list, "");
    refused(2, "Invalid number of records 'aidRecords': 129 (min: 1, max: 128)", list, records.c_str());
    refused(2, "Invalid acquirer identifier at index 0: \"AB\"", list, "AB-1");
    refused(2, "Invalid record at index 1: 0x41 0xe9", list, "010101A\xE9");
    const char* const tooLong = "Number length (13) is greater than field length (12)";
    refused(2, tooLong, abecs_cmd_gcx_builder_amount, 1000000000000);
    refused(2, tooLong, abecs_cmd_gcx_builder_cashback, 1000000000000);
    refused(2, tooLong, abecs_cmd_gcx_builder_amount, 9999999999999);
    refused(2, "'i' (10000000000000) is too long (maximum: 9999999999999", abecs_cmd_gcx_builder_amount,
            10000000000000);
    refused(2, "Invalid 'trnCurr' (maximum: 999, requested: 1000)", abecs_cmd_gcx_builder_trncurr, 1000);
    refused(2, "'gcxOpt' is NULL", abecs_cmd_gcx_builder_gcxopt, nullptr);
    refused(2, "'gcxOpt' is too long (maximum: 5, requested: 6)", abecs_cmd_gcx_builder_gcxopt, "10000A");
    refused(2, "panMask: invalid char (0x2E) at index 2", abecs_cmd_gcx_builder_panmask, "06.4");
    refused(2, "'panMask' is too short (minimum: 4, requested: 3)", abecs_cmd_gcx_builder_panmask, "064");
    refused(2, "'emvData' is NULL", abecs_cmd_gcx_builder_emvdata, nullptr);
    refused(2, "'emvData->szData' is too long (size: 513, maximum: 512)", abecs_cmd_gcx_builder_emvdata, &emvData);
    refused(2, "'tagList' is NULL", abecs_cmd_gcx_builder_taglist, nullptr);
    refused(2, "'tagList' is too long (size: 129, maximum: 128)", abecs_cmd_gcx_builder_taglist, &tagList);
    refused(2, "'dspMsg' is NULL", abecs_cmd_gcx_builder_dspmsg, nullptr);
    refused(2, "'dspMsg' is too long (length: 129, max: 128)", abecs_cmd_gcx_builder_dspmsg, message.c_str());
    refused(2, "Invalid character (0x0A) at position 1", abecs_cmd_gcx_builder_dspmsg, "A\n");
    expect_sent("GCX020" + kMoment);
    set(abecs_cmd_gcx_builder_acqref, 5);
    refused(3, "SPE_ACQREF already set", abecs_cmd_gcx_builder_acqref, 6);
    refused(2, "Invalid 'acqRef' (maximum: 99, requested: 100)", abecs_cmd_gcx_builder_acqref, 100);
}

TEST_F(Gcx, ARefusedResetLeavesTheBuilder) {
    set(abecs_cmd_gcx_builder_trntype, 1);
    refused(2, "'trnDate' is NULL", abecs_cmd_gcx_builder_reset, nullptr, "1");
    refused(2, "'trnTime' is NULL", abecs_cmd_gcx_builder_reset, "1", nullptr);
    refused(2, "'trnDate' is too short (minimum: 6, requested: 5)", abecs_cmd_gcx_builder_reset, "25123", "1");
    refused(2, "trnTime: invalid char (0x3A) at index 2", abecs_cmd_gcx_builder_reset, "251231", "23:59A");
    expect_sent("GCX025" + kMoment + "0021 0001 01"_hex);
    EXPECT_RAISES(2, "'trnDate' is too long (maximum: 6, requested: 8)",
                  abecs_cmd_gcx_builder_new("20251231", "235959"));
    const support::ReturningRaises handler;
    EXPECT_EQ(abecs_cmd_gcx_builder_new("251231", nullptr), nullptr);
    EXPECT_EQ(handler.all().size(), 1U);
}

TEST_F(Gcx, CopiesTheAnswerIntoTheMap) {
    Link link;
    link.peer.request("GCX020" + kMoment).response("GCX000018" + "804F 0002 3033 8052 0000 8050 0004 00011617"_hex);
    link.call(abecs_cmd_gcx)(builder_);
    EXPECT_EQ(link.call(abecs_cmd_gcx_response)(map_.get(), nullptr), 0);
    EXPECT_EQ(map_.items(), (support::ParamMap::Items{{0x804F, "03"}, {0x8052, ""}, {0x8050, "00011617"_hex}}));
}

}  // namespace
