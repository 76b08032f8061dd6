// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gpn.h"

#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <utility>

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

// In the order of the checks. From the last row on, each fault is added to those behind it and hides them.
TEST(Gpn, ChecksTheDataInOrder) {
    using Method = AbecsCmdGpnMethod_E;
    const struct {
        const char* detail;
        void (*spoil)(Data&);
    } rows[] = {
        {"Invalid enumerator for AbecsCmdGpnMethod_E: 4", [](Data& data) { data.method = static_cast<Method>(4); }},
        {"Invalid enumerator for AbecsCmdGpnMethod_E: -1", [](Data& data) { data.method = static_cast<Method>(-1); }},
        {"Invalid value for 'cmdData->keyIdx': 100", [](Data& data) { data.keyIdx = 100; }},
        {"Invalid length for 'cmdData->wkEnc': 32 (expected: 16)",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
             std::strcpy(data.wkEnc, "0123456789ABCDEF0123456789ABCDEF");
         }},
        {"Invalid length for 'cmdData->wkEnc': 0 (expected: 32)", [](Data& data) { data.wkEnc[0] = '\0'; }},
        {"Invalid length for 'cmdData->wkEnc': 33 (expected: 32)",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_TDES;
             std::memset(data.wkEnc, '0', sizeof data.wkEnc);
         }},
        {"Invalid length for 'cmdData->pan': 1", [](Data& data) { std::strcpy(data.pan, "4"); }},
        {"Invalid length for 'cmdData->pan': 20", [](Data& data) { std::memset(data.pan, '4', sizeof data.pan); }},
        {"Invalid length for 'cmdData->entryCount': 0", [](Data& data) { data.entryCount = 0; }},
        {"Invalid length for 'cmdData->entryCount': 10", [](Data& data) { data.entryCount = 10; }},
        {"Invalid value for 'cmdData->entries[0].min': 3", [](Data& data) { data.entries[0].min = 3; }},
        {"Invalid value for 'cmdData->entries[0].min': 100", [](Data& data) { data.entries[0].min = 100; }},
        {"Invalid value for 'cmdData->entries[0].max': 100", [](Data& data) { data.entries[0].max = 100; }},
        {"Invalid value for 'cmdData->entries[0].max': 3", [](Data& data) { data.entries[0].max = 3; }},
        {"Invalid length for 'cmdData->entries[0].msg': 33",
         [](Data& data) { std::memset(data.entries[0].msg, 'x', sizeof data.entries[0].msg); }},
        {"Invalid value for 'cmdData->entries[1].min': 0", [](Data& data) { data.entryCount = 2; }},
        {"Invalid hex byte at index 14",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
             std::strcpy(data.wkEnc, "0123456789ABCDEx");
         }},
        {"Invalid character (0x80) at position 2", [](Data& data) { std::strcpy(data.pan, "41\x80"); }},
        {"Invalid character (0x0D) at position 3", [](Data& data) { std::strcpy(data.entries[0].msg, "PIN\r"); }},
    };
    Link link;
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gpn(link.comm, nullptr));
    Data data = kSimple;
    for (size_t i = std::size(rows); i-- > 0;) {
        rows[i].spoil(data);
        EXPECT_REFUSED(2, rows[i].detail, abecs_cmd_gpn(link.comm, &data));
    }
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
