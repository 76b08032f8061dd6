// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gpn.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

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

TEST(Gpn, SendsOneEntry) {
    Data data = kSimple;
    expect_sent(data, "093" "3" "00" + kNoKey + "00" + kBlanks + "1" "0412" + kPrompt);

    data = {ABECS_CMD_GPN_METHOD_MK_WK_DES, 99, "0123456789abcdef", "4111111111111111", 1, {{4, 4, ""}}};
    expect_sent(data,
                "093"
                "0"
                "99"
                "30303030303030300123456789ABCDEF"
                "16"
                "4111111111111111   "
                "1"
                "0404"
                    + std::string(32, ' '));

    data = {ABECS_CMD_GPN_METHOD_MK_WK_TDES, 7, "0123456789ABCDEFFEDCBA9876543210",
            "6799990100000000019",           1, {{99, 99, "0123456789ABCDEF0123456789abcde\xC7"}}};
    expect_sent(data,
                "093"
                "1"
                "07"
                "0123456789ABCDEFFEDCBA9876543210"
                "19"
                "6799990100000000019"
                "1"
                "9999"
                "0123456789ABCDEF0123456789abcde\xC7");
}

TEST(Gpn, SendsNineEntries) {
    Data data = kSimple;
    data.entryCount = 9;
    std::string entries;
    for (uint8_t i = 0; i < 9; ++i) {
        data.entries[i] = {4, static_cast<uint8_t>(10 + i), "PIN"};
        entries += "041" + std::to_string(i) + kPrompt;
    }
    expect_sent(data,
                "3813"
                "00" + kNoKey
                    + "00" + kBlanks + "9" + entries);
}

TEST(Gpn, IgnoresTheWorkingKeyOfDukpt) {
    Data data = kSimple;
    data.method = ABECS_CMD_GPN_METHOD_DUKPT_DES;
    std::memset(data.wkEnc, 'x', sizeof data.wkEnc);
    expect_sent(data, "093" "2" "00" + kNoKey + "00" + kBlanks + "1" "0412" + kPrompt);
}

TEST(Gpn, ChecksTheData) {
    const struct {
        const char* detail;
        void (*spoil)(Data&);
    } rows[] = {
        {"Invalid enumerator for AbecsCmdGpnMethod_E: 4",
         [](Data& data) { data.method = static_cast<AbecsCmdGpnMethod_E>(4); }},
        {"Invalid enumerator for AbecsCmdGpnMethod_E: -1",
         [](Data& data) { data.method = static_cast<AbecsCmdGpnMethod_E>(-1); }},
        {"Invalid value for 'cmdData->keyIdx': 100", [](Data& data) { data.keyIdx = 100; }},
        {"Invalid length for 'cmdData->wkEnc': 32 (expected: 16)",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
             std::strcpy(data.wkEnc, "0123456789ABCDEF0123456789ABCDEF");
         }},
        {"Invalid length for 'cmdData->wkEnc': 0 (expected: 32)",
         [](Data& data) { data.method = ABECS_CMD_GPN_METHOD_MK_WK_TDES; }},
        {"Invalid length for 'cmdData->wkEnc': 33 (expected: 32)",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_TDES;
             std::memset(data.wkEnc, '0', sizeof data.wkEnc);
         }},
        {"Invalid hex byte at index 14",
         [](Data& data) {
             data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
             std::strcpy(data.wkEnc, "0123456789ABCDEx");
         }},
        {"Invalid length for 'cmdData->pan': 1", [](Data& data) { std::strcpy(data.pan, "4"); }},
        {"Invalid length for 'cmdData->pan': 20", [](Data& data) { std::memset(data.pan, '4', sizeof data.pan); }},
        {"Invalid character (0x80) at position 2", [](Data& data) { std::strcpy(data.pan, "41\x80"); }},
        {"Invalid length for 'cmdData->entryCount': 0", [](Data& data) { data.entryCount = 0; }},
        {"Invalid length for 'cmdData->entryCount': 10", [](Data& data) { data.entryCount = 10; }},
        {"Invalid value for 'cmdData->entries[0].min': 3", [](Data& data) { data.entries[0].min = 3; }},
        {"Invalid value for 'cmdData->entries[0].min': 100", [](Data& data) { data.entries[0].min = 100; }},
        {"Invalid value for 'cmdData->entries[0].max': 100", [](Data& data) { data.entries[0].max = 100; }},
        {"Invalid value for 'cmdData->entries[0].max': 4",
         [](Data& data) {
             data.entries[0] = {5, 4, ""};
         }},
        {"Invalid length for 'cmdData->entries[0].msg': 33",
         [](Data& data) { std::memset(data.entries[0].msg, 'x', sizeof data.entries[0].msg); }},
        {"Invalid character (0x0D) at position 3", [](Data& data) { std::strcpy(data.entries[0].msg, "PIN\r"); }},
        {"Invalid value for 'cmdData->entries[0].max': 3",  // before the second entry's min
         [](Data& data) {
             data.entryCount = 2;
             data.entries[0].max = 3;
         }},
        {"Invalid value for 'cmdData->entries[8].min': 0",
         [](Data& data) {
             data.entryCount = 9;
             for (int i = 1; i < 8; ++i) { data.entries[i] = data.entries[0]; }
         }},
    };
    Link link;
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gpn(nullptr, nullptr));
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gpn(link.comm, nullptr));
    for (const auto& row : rows) {
        Data data = kSimple;
        row.spoil(data);
        EXPECT_REFUSED(2, row.detail, abecs_cmd_gpn(link.comm, &data));
    }
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Gpn, ChecksInTheOrderOfTheFields) {
    Link link;
    Data data{static_cast<AbecsCmdGpnMethod_E>(9), 100, "", "4", 0, {}};
    EXPECT_RAISES(2, "Invalid enumerator for AbecsCmdGpnMethod_E: 9", abecs_cmd_gpn(link.comm, &data));
    data.method = ABECS_CMD_GPN_METHOD_MK_WK_DES;
    EXPECT_RAISES(2, "Invalid value for 'cmdData->keyIdx': 100", abecs_cmd_gpn(link.comm, &data));
    data.keyIdx = 0;
    EXPECT_RAISES(2, "Invalid length for 'cmdData->wkEnc': 0 (expected: 16)", abecs_cmd_gpn(link.comm, &data));
    data.method = ABECS_CMD_GPN_METHOD_DUKPT_DES;
    EXPECT_RAISES(2, "Invalid length for 'cmdData->pan': 1", abecs_cmd_gpn(link.comm, &data));
    data.pan[0] = '\0';
    EXPECT_RAISES(2, "Invalid length for 'cmdData->entryCount': 0", abecs_cmd_gpn(link.comm, &data));
}

class GpnAnswer : public testing::Test {
protected:
    GpnAnswer() {
        link_.peer.request("GPN0933" "00" + kNoKey + "00" + kBlanks + "1" "0412" + kPrompt);
        link_.call(abecs_cmd_gpn)(&kSimple);
    }

    Link link_;
    AbecsCmdGpnRspData out_{"old", "old"};
};

TEST_F(GpnAnswer, IsThePinBlockAndItsKeySerialNumber) {
    link_.peer.response(
        "GPN000036"
        "1B9C1845EB993A7A"
        "FFFF9876543210E00001");
    EXPECT_EQ(link_.call(abecs_cmd_gpn_response)(&out_, nullptr), 0);
    EXPECT_STREQ(out_.pinBlk, "1B9C1845EB993A7A");
    EXPECT_STREQ(out_.ksn, "FFFF9876543210E00001");
}

TEST_F(GpnAnswer, LosesLeadingBytesThatLookLikeFilling) {
    link_.peer.response(
        "GPN000999"
        "309C1845EB993A30"
        "30300000000000000000");
    EXPECT_EQ(link_.call(abecs_cmd_gpn_response)(&out_, nullptr), 0);
    EXPECT_STREQ(out_.pinBlk, "9C1845EB993A30");
    EXPECT_STREQ(out_.ksn, "0000000000000000");
}

TEST_F(GpnAnswer, CanBeMalformed) {
    const struct {
        std::string data;
        const char* detail;
    } rows[] = {
        {"", "Buffer does not have enough data (requested: 3, available: 0)"},
        {"0161B9C1845EB993A", "Buffer does not have enough data (requested: 16, available: 14)"},
        {"0361B9C1845EB993A7AFFFF9876543210E0000", "Buffer does not have enough data (requested: 20, available: 19)"},
        {"0361B9C1845EB993A7xFFFF9876543210E00001", "Invalid data: 7x"},
    };
    for (const auto& row : rows) {
        link_.peer.response("GPN000" + row.data);
        EXPECT_RAISES(6, row.detail, abecs_cmd_gpn_response(link_.comm, &out_, nullptr));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "GPN");
    }
}

TEST_F(GpnAnswer, OfAnotherStatusLeavesTheRecord) {
    link_.peer.response("GPN0420361B9C1845EB993A7AFFFF9876543210E00001");
    EXPECT_EQ(link_.call(abecs_cmd_gpn_response)(&out_, nullptr), 42);
    EXPECT_STREQ(out_.pinBlk, "old");
    EXPECT_STREQ(out_.ksn, "old");
}

}  // namespace
