// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

// Every byte of a member's text: one that is too long has no end.
template <size_t kSize>
void fill(char (&member)[kSize], const std::string& text) {
    std::memset(member, 0, kSize);
    text.copy(member, kSize);
}

AbecsCmdChpParam param(int32_t slot, int32_t oper, const std::string& command, int32_t format,
                       const std::string& message) {
    AbecsCmdChpParam made{};
    made.slot = static_cast<AbecsCmdChpSlot_E>(slot);
    made.oper = static_cast<AbecsCmdChpOper_E>(oper);
    made.pinFmt = static_cast<AbecsCmdChpPinFmt_E>(format);
    fill(made.chpCmd, command);
    fill(made.message, message);
    return made;
}

TEST(Chp, SendsWhatTheOperationTakes) {
    const auto sendsParam = [](const AbecsCmdChpParam& sent, const Text& request) {
        sends(request, abecs_cmd_chp, &sent);
    };
    sendsParam(param(9, 1, "zz", 3, "\r"), "CHP|005|91|000"_wire);
    sendsParam(param(1, 2, "00a404000e", 3, "\r"), "CHP|015|12|005|00A404000E"_wire);
    sendsParam(param(1, 2, std::string(521, 'a'), 3, "\r"), "CHP|525|12|260"_wire + std::string(520, 'A'));
    sendsParam(param(2, 3, "00200080", 9, "PIN?"), "CHP|046|23|004|00200080|9"_wire + padded("PIN?", 32));
    sendsParam(param(2, 3, "00200080", 0, std::string(33, '\xE9')),
               "CHP|046|23|004|00200080|0"_wire + std::string(32, '\xE9'));
}

TEST(Chp, ChecksItsArgumentsInTheirOrder) {
    const auto refused = [](const AbecsCmdChpParam& wrong, const Refusal& refusal) {
        refuses(refusal, abecs_cmd_chp, &wrong);
    };
    refuses("'param' is NULL", abecs_cmd_chp, nullptr);
    refused(param(10, 4, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpSlot_E: 10");
    refused(param(9, 4, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpOper_E: 4");
    refused(param(9, 2, "00A", 3, "\r"), "Length of 'param->chpCmd' is invalid: 3");
    refused(param(9, 3, "0020008000", 3, "\r"), "Length of 'param->chpCmd' is invalid: 10");
    refused(param(9, 3, "0020008x", 3, "\r"), "Invalid enumerator for AbecsCmdChpPinFmt_E: 3");
    refused(param(9, 3, "00200080", 9, "\r"), "Invalid character (0x0D) at position 0");
}

TEST(Chp, ReadsWhatTheCardAnswers) {
    const auto reads = [](const Text& response, const char* card, const Outcome& expected = kOk) {
        char out[515] = "old";
        polls({"CHP000" + response.text, response.where}, expected, abecs_cmd_chp_response, out, nullptr);
        EXPECT_STREQ(out, card) << response.text;
    };
    const std::string most = repeated("9f", 257);
    reads("000", "");
    reads("009|003|306aFF"_wire, "6aFF");
    reads("517|257"_wire + most, most.c_str());
    reads("519|258"_wire + most + "00", "",
          error(kArgument, "sizeTo (515) is not enough to store field (length: 516)"));
}

using Data = AbecsCmdGpnCmdData;

constexpr Data kSimple{ABECS_CMD_GPN_METHOD_DUKPT_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
const std::string kPrompt = padded("PIN", 32);
const std::string kNoKey = repeated("30", 16);
const std::string kNoPan = padded("00", 21);

TEST(Gpn, SendsTheKeyOfEachMethodAndTheEntries) {
    Data data = kSimple;
    data.method = ABECS_CMD_GPN_METHOD_DUKPT_DES;
    std::memset(data.wkEnc, 'x', sizeof data.wkEnc);  // which nobody looks at
    sends("GPN093200" + kNoKey + kNoPan + "10412" + kPrompt, abecs_cmd_gpn, &data);
    data = {ABECS_CMD_GPN_METHOD_MK_WK_DES, 99, "0123456789abcdef", "4111111111111111", 1, {{4, 4, ""}}};
    sends("GPN09309930303030303030300123456789ABCDEF164111111111111111   10404" + std::string(32, ' '), abecs_cmd_gpn,
          &data);
    data = {ABECS_CMD_GPN_METHOD_MK_WK_TDES, 7, "0123456789ABCDEFFEDCBA9876543210",
            "6799990100000000019",           1, {{99, 99, "0123456789ABCDEF0123456789abcde\xC7"}}};
    sends("GPN0931070123456789ABCDEFFEDCBA9876543210196799990100000000019199990123456789ABCDEF0123456789abcde\xC7",
          abecs_cmd_gpn, &data);
    data = kSimple;
    data.entryCount = 9;
    std::string entries = "9";
    for (uint8_t i = 0; i < 9; ++i) {
        data.entries[i] = {4, static_cast<uint8_t>(10 + i), "PIN"};
        entries += "041" + std::to_string(i) + kPrompt;
    }
    sends("GPN381300" + kNoKey + kNoPan + entries, abecs_cmd_gpn, &data);
}

// In the order of the checks, the last of them first: each fault is added to those before and hides them.
TEST(Gpn, ChecksTheDataInOrder) {
    Data data = kSimple;
    const auto number = [&](auto& field, int32_t wrong, const Refusal& refusal) {
        field = static_cast<std::remove_reference_t<decltype(field)>>(wrong);
        refuses(refusal, abecs_cmd_gpn, &data);
    };
    const auto text = [&](auto& field, const std::string& wrong, const Refusal& refusal) {
        fill(field, wrong);
        refuses(refusal, abecs_cmd_gpn, &data);
    };
    text(data.entries[0].msg, "PIN\r", "Invalid character (0x0D) at position 3");
    data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
    text(data.wkEnc, "0123456789ABCDEx", "Invalid hex byte at index 14");
    number(data.entryCount, 2, "Invalid value for 'cmdData->entries[1].min': 0");
    text(data.entries[0].msg, std::string(33, 'x'), "Invalid length for 'cmdData->entries[0].msg': 33");
    number(data.entries[0].max, 3, "Invalid value for 'cmdData->entries[0].max': 3");
    number(data.entries[0].min, 3, "Invalid value for 'cmdData->entries[0].min': 3");
    number(data.entryCount, 10, "Invalid length for 'cmdData->entryCount': 10");
    text(data.pan, std::string(20, '4'), "Invalid length for 'cmdData->pan': 20");
    text(data.pan, "4", "Invalid length for 'cmdData->pan': 1");
    text(data.wkEnc, std::string(32, '0'), "Invalid length for 'cmdData->wkEnc': 32 (expected: 16)");
    data.method = ABECS_CMD_GPN_METHOD_MK_WK_TDES;
    text(data.wkEnc, std::string(33, '0'), "Invalid length for 'cmdData->wkEnc': 33 (expected: 32)");
    number(data.keyIdx, 100, "Invalid value for 'cmdData->keyIdx': 100");
    number(data.method, 4, "Invalid enumerator for AbecsCmdGpnMethod_E: 4");
    refuses("'cmdData' is NULL", abecs_cmd_gpn, nullptr);
}

TEST(Gpn, ReadsPinBlockAndKeySerialNumber) {
    const auto reads = [](const Text& response, const char* pinBlk, const char* ksn, const Outcome& expected = kOk) {
        AbecsCmdGpnRspData out{};
        polls({"GPN000" + response.text, response.where}, expected, abecs_cmd_gpn_response, &out, nullptr);
        EXPECT_STREQ(out.pinBlk, pinBlk);
        EXPECT_STREQ(out.ksn, ksn);
    };
    const std::string good = "0361B9C1845EB993A7AFFFF9876543210E00001";
    reads(good, "1B9C1845EB993A7A", "FFFF9876543210E00001");
    reads("999309C1845EB993A3030300000000000000000", "9C1845EB993A30", "0000000000000000");
    reads(good.substr(0, 38), "1B9C1845EB993A7A", "", too_few(20, 19));
}

}  // namespace
