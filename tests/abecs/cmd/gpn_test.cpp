// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gpn.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;
using Data = AbecsCmdGpnCmdData;

constexpr Data kSimple{ABECS_CMD_GPN_METHOD_DUKPT_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
const std::string kBlanks(19, ' ');
const std::string kPrompt = "PIN                             ";
const std::string kNoKey = "30303030303030303030303030303030";

void expect_sent(const Data& data, const std::string& request, support::Peer::Where where = {}) {
    Link link;
    link.peer.request("GPN" + request, where);
    link.call(abecs_cmd_gpn, where)(&data);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GPN");
}

void send(Link& link) {
    link.peer.request("GPN093300" + kNoKey + "00" + kBlanks + "10412" + kPrompt);
    link.call(abecs_cmd_gpn)(&kSimple);
}

TEST(Gpn, SendsTheKeyOfEachMethod) {
    Data data = kSimple;
    data.method = ABECS_CMD_GPN_METHOD_DUKPT_DES;
    std::memset(data.wkEnc, 'x', sizeof data.wkEnc);  // which nobody looks at
    expect_sent(data, "093200" + kNoKey + "00" + kBlanks + "10412" + kPrompt);

    data = {ABECS_CMD_GPN_METHOD_MK_WK_DES, 99, "0123456789abcdef", "4111111111111111", 1, {{4, 4, ""}}};
    expect_sent(data, "09309930303030303030300123456789ABCDEF164111111111111111   10404" + std::string(32, ' '));

    data = {ABECS_CMD_GPN_METHOD_MK_WK_TDES, 7, "0123456789ABCDEFFEDCBA9876543210",
            "6799990100000000019",           1, {{99, 99, "0123456789ABCDEF0123456789abcde\xC7"}}};
    expect_sent(data,
                "0931070123456789ABCDEFFEDCBA9876543210196799990100000000019199990123456789ABCDEF0123456789abcde\xC7");
}

TEST(Gpn, SendsNineEntries) {
    Data data = kSimple;
    data.entryCount = 9;
    std::string entries;
    for (uint8_t i = 0; i < 9; ++i) {
        data.entries[i] = {4, static_cast<uint8_t>(10 + i), "PIN"};
        entries += "041" + std::to_string(i) + kPrompt;
    }
    expect_sent(data, "381300" + kNoKey + "00" + kBlanks + "9" + entries);
}

// In the order of the checks, the last of them first: each fault is added to those before and hides them.
TEST(Gpn, ChecksTheDataInOrder) {
    Link link;
    Data data = kSimple;
    const auto refused = [&](const char* detail) { EXPECT_REFUSED(2, detail, abecs_cmd_gpn(link.comm, &data)); };
    const auto number = [&](auto& field, int32_t wrong, const char* detail) {
        field = static_cast<std::remove_reference_t<decltype(field)>>(wrong);
        refused(detail);
    };
    const auto text = [&](auto& field, const std::string& wrong, const char* detail) {
        std::memset(field, 0, sizeof field);
        wrong.copy(field, sizeof field);
        refused(detail);
    };
    text(data.entries[0].msg, "PIN\r", "Invalid character (0x0D) at position 3");
    text(data.pan, "41\x80", "Invalid character (0x80) at position 2");
    data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
    text(data.wkEnc, "0123456789ABCDEx", "Invalid hex byte at index 14");
    number(data.entryCount, 2, "Invalid value for 'cmdData->entries[1].min': 0");
    text(data.entries[0].msg, std::string(33, 'x'), "Invalid length for 'cmdData->entries[0].msg': 33");
    number(data.entries[0].max, 3, "Invalid value for 'cmdData->entries[0].max': 3");
    number(data.entries[0].max, 100, "Invalid value for 'cmdData->entries[0].max': 100");
    number(data.entries[0].min, 100, "Invalid value for 'cmdData->entries[0].min': 100");
    number(data.entries[0].min, 3, "Invalid value for 'cmdData->entries[0].min': 3");
    number(data.entryCount, 10, "Invalid length for 'cmdData->entryCount': 10");
    number(data.entryCount, 0, "Invalid length for 'cmdData->entryCount': 0");
    text(data.pan, std::string(20, '4'), "Invalid length for 'cmdData->pan': 20");
    text(data.pan, "4", "Invalid length for 'cmdData->pan': 1");
    text(data.wkEnc, std::string(32, '0'), "Invalid length for 'cmdData->wkEnc': 32 (expected: 16)");
    data.method = ABECS_CMD_GPN_METHOD_MK_WK_TDES;
    text(data.wkEnc, std::string(33, '0'), "Invalid length for 'cmdData->wkEnc': 33 (expected: 32)");
    text(data.wkEnc, "", "Invalid length for 'cmdData->wkEnc': 0 (expected: 32)");
    number(data.keyIdx, 100, "Invalid value for 'cmdData->keyIdx': 100");
    number(data.method, -1, "Invalid enumerator for AbecsCmdGpnMethod_E: -1");
    number(data.method, 4, "Invalid enumerator for AbecsCmdGpnMethod_E: 4");
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gpn(link.comm, nullptr));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Gpn, ReadsPinBlockAndKeySerialNumber) {
    const auto reads = [](const char* response, const char* pinBlk, const char* ksn) {
        Link link;
        send(link);
        link.peer.response(response);
        AbecsCmdGpnRspData out{};
        EXPECT_EQ(link.call(abecs_cmd_gpn_response)(&out, nullptr), 0);
        EXPECT_STREQ(out.pinBlk, pinBlk);
        EXPECT_STREQ(out.ksn, ksn);
    };
    reads("GPN0000361B9C1845EB993A7AFFFF9876543210E00001", "1B9C1845EB993A7A", "FFFF9876543210E00001");
    reads("GPN000999309C1845EB993A3030300000000000000000", "9C1845EB993A30", "0000000000000000");
}

TEST(Gpn, RefusesMalformedAnswers) {
    Link link;
    send(link);
    AbecsCmdGpnRspData out{};
    const auto refused = [&](const std::string& fields, const char* detail) {
        link.peer.response("GPN000" + fields);
        EXPECT_RAISES(6, detail, abecs_cmd_gpn_response(link.comm, &out, nullptr));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GPN");
    };
    refused("", "Buffer does not have enough data (requested: 3, available: 0)");
    refused("0161B9C1845EB993A", "Buffer does not have enough data (requested: 16, available: 14)");
    refused("0361B9C1845EB993A7AFFFF9876543210E0000",
            "Buffer does not have enough data (requested: 20, available: 19)");
    refused("0361B9C1845EB993A7xFFFF9876543210E00001", "Invalid data: 7x");
}

}  // namespace
