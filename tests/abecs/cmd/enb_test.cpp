// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/enb.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/abecs/cmd/answers.h"
#include "tests/support/refused.h"

namespace {

using support::Link;
using Data = AbecsCmdEnbCmdData;

constexpr AbecsMk kMaster{
    ABECS_MK_TYPE_TDES,
    0,
    {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
constexpr AbecsWkPan kPanKey{
    ABECS_WK_PAN_TYPE_TDES,
    {0x0F, 0x1E, 0x2D, 0x3C, 0x4B, 0x5A, 0x69, 0x78, 0x87, 0x96, 0xA5, 0xB4, 0xC3, 0xD2, 0xE1, 0xF0}};
const char* const kWorkingKey = "11223344556677889900aabbCCDDEEFF";

constexpr Data kSimple{ABECS_CMD_ENB_METHOD_1, 7, "3eb3b72576bbbe834f0b96aaa5a8b548", "4111111111111111"};
const std::string kRequest = "ENB0511073EB3B72576BBBE834F0B96AAA5A8B5484111111111111111";

// Worked out with the openssl program: enc -des-ecb and -des-ede, the latter two with -d.
TEST(Enb, PreparesWorkingKeysAndData) {
    char key[33];
    AbecsMk master = kMaster;
    EXPECT_EQ(abecs_cmd_enb_encrypt_wk(kWorkingKey, &master, key), key);
    EXPECT_STREQ(key, "3eb3b72576bbbe834f0b96aaa5a8b548");
    EXPECT_EQ(abecs_cmd_enb_encrypt_wk("1122334455667788", &master, key), key);
    EXPECT_STREQ(key, "3eb3b72576bbbe8308d7b4fb629d0885") << "as though zeros followed";
    master.type = ABECS_MK_TYPE_DES;
    EXPECT_EQ(abecs_cmd_enb_encrypt_wk(kWorkingKey, &master, key), key);
    EXPECT_STREQ(key, "b4cc3fd9d8d95214a024e6d986fdcdb0");

    const std::pair<AbecsWkPanType_E, const char*> rows[] = {{ABECS_WK_PAN_TYPE_DES, "6db95c87a27b8cec"},
                                                             {ABECS_WK_PAN_TYPE_TDES, "5d3d5a8e5c5a5d12"},
                                                             {ABECS_WK_PAN_TYPE_TDES_RSA, "5d3d5a8e5c5a5d12"}};
    for (const auto& [type, expected] : rows) {
        AbecsWkPan panKey = kPanKey;
        panKey.type = type;
        char data[17] = "4111111111111111";
        EXPECT_EQ(abecs_cmd_enb_encode_data(data, &panKey, data), data) << "in place, too";
        EXPECT_STREQ(data, expected);
    }
}

// What a helper refuses, it raises once, and leaves the caller's text as it was.
TEST(Enb, HelpersCheckTheirArgumentsInOrder) {
    AbecsMk master = kMaster;
    AbecsWkPan panKey = kPanKey;
    char text[33] = "kept";
    const auto refused = [&](const char* detail, auto helper, const char* clear, auto* key, char* out) {
        EXPECT_RAISES(2, detail, helper(clear, key, out));
        const support::ReturningRaises handler;
        EXPECT_EQ(helper(clear, key, out), nullptr) << detail;
        EXPECT_EQ(handler.all(), support::errors(2, {detail}));
        EXPECT_STREQ(text, "kept");
    };
    const auto encrypt = abecs_cmd_enb_encrypt_wk;
    const auto encode = abecs_cmd_enb_encode_data;
    const char* const noRoom = "Destination buffer does not have enough room for decoded data";
    refused("Missing 'mk'", encrypt, "x", static_cast<AbecsMk*>(nullptr), nullptr);
    refused("Missing 'out'", encrypt, "x", &master, nullptr);
    refused(noRoom, encrypt, "11223344556677889900AABBCCDDEEFF00", &master, text);
    refused("Invalid hex string", encrypt, "1122334455667788x", &master, text);
    master.type = static_cast<AbecsMkType_E>(-1);
    refused("Invalid enumerator for AbecsMkType_E: -1", encrypt, "x", &master, text);
    master.type = static_cast<AbecsMkType_E>(2);
    refused("Invalid enumerator for AbecsMkType_E: 2", encrypt, "x", &master, text);
    refused("Missing 'wkPan'", encode, "x", static_cast<AbecsWkPan*>(nullptr), nullptr);
    refused("Missing 'out'", encode, "x", &panKey, nullptr);
    refused(noRoom, encode, "411111111111111100", &panKey, text);
    refused("Invalid hex string", encode, "411111111111111", &panKey, text);
    panKey.type = static_cast<AbecsWkPanType_E>(3);
    refused("Invalid enumerator for AbecsWkPanType_E: 3", encode, "x", &panKey, text);
}

TEST(Enb, SendsTheBlockAndReadsItEnciphered) {
    const auto exchanges = [](const Data& data, const std::string& request, const char* response,
                              const char* expected) {
        Link link;
        link.peer.request(request).response(response);
        char out[17] = "kept";
        EXPECT_EQ(link.call(abecs_cmd_enb)(&data, out), 0) << response;
        EXPECT_STREQ(out, expected) << response;
    };
    exchanges(kSimple, kRequest, "ENB00001646df6741E1E2B68C", "46df6741E1E2B68C");
    exchanges({ABECS_CMD_ENB_METHOD_0, 99, "", "0123456789abcdef"},
              "ENB051099303030303030303030303030303030300123456789ABCDEF", "ENB00099930DF6741E1E2B630",
              "DF6741E1E2B630");
}

// In the order of the checks, the last of them first: each fault is added to those before and hides them.
TEST(Enb, ChecksTheDataInOrder) {
    Link link;
    Data data = kSimple;
    char out[17] = "kept";
    const auto refused = [&](auto& field, auto wrong, const char* detail) {
        field = static_cast<std::remove_reference_t<decltype(field)>>(wrong);
        EXPECT_REFUSED(2, detail, abecs_cmd_enb(link.comm, &data, out));
    };
    refused(data.data[0], ' ', "Invalid hex byte at index 0");
    std::memset(data.data, '0', 17);
    refused(data.data[0], '0', "Field does not have enough room for data");
    refused(data.wkEnc[31], 'g', "Invalid hex byte at index 30");
    std::memset(data.wkEnc, '0', 33);
    refused(data.wkEnc[0], '0', "Field does not have enough room for data");
    refused(data.keyIdx, 100, "Number length (3) is greater than field length (2)");
    refused(data.method, 2, "Invalid enumerator for AbecsCmdEnbMethod_E: 2");
    refused(data.method, -1, "Invalid enumerator for AbecsCmdEnbMethod_E: -1");
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_enb(link.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_enb(link.comm, &kSimple, nullptr));
    EXPECT_STREQ(out, "kept");
}

TEST(Enb, RefusesMalformedAnswers) {
    char out[17] = "old";
    support::expect_bad_answers(
        kRequest, [&](AbecsComm* link) { abecs_cmd_enb(link, &kSimple, out); },
        {{"ENB000", 6, "Buffer does not have enough data (requested: 3, available: 0)"},
         {"ENB00001646DF6741E1E2B6", 6, "Buffer does not have enough data (requested: 16, available: 14)"},
         {"ENB00001646DF6741E1E2B6-C", 6, "Invalid data: -C"}});
    EXPECT_STREQ(out, "");
}

}  // namespace
