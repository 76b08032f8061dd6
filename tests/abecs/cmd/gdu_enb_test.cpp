// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

AbecsCmdGduMethod_E method(int32_t value) { return static_cast<AbecsCmdGduMethod_E>(value); }

TEST(Gdu, ReadsTheSerialNumber) {
    const auto reads = [](int32_t number, uint8_t index, const Text& request, const std::string& response,
                          const Outcome& expected, const char* ksn) {
        char out[21] = "kept";
        exchanges(request, "GDU000" + response, expected, abecs_cmd_gdu, method(number), index, out);
        EXPECT_STREQ(out, ksn) << response;
    };
    const std::string ksn = "FFFF9876543210E00001";
    reads(2, 0, "GDU003200", "020" + ksn, kOk, ksn.c_str());
    reads(3, 99, "GDU003399", "02030309876543210e03030", kOk, "9876543210e03030");
    reads(2, 0, "GDU003200", "021" + ksn + "0", error(kProtocol, "Invalid RSP_LEN1 (expected: 20, read: 21)"), "kept");
    const Raised badIndex = error(kIndex, "Invalid idx: 100 (maximum is 99)");
    char out[21];
    refuses(badIndex, abecs_cmd_gdu, method(1), 100, nullptr);
    refuses("'out' is NULL", abecs_cmd_gdu, method(1), 99, nullptr);
    refuses("Invalid enumerator for AbecsCmdGduMethod_E: 4", abecs_cmd_gdu, method(4), 99, out);
}

using Data = AbecsCmdEnbCmdData;

const char* const kWorkingKey = "11223344556677889900aabbCCDDEEFF";
constexpr Data kSimple{ABECS_CMD_ENB_METHOD_1, 7, "3eb3b72576bbbe834f0b96aaa5a8b548", "4111111111111111"};
const std::string kRequest = "ENB0511073EB3B72576BBBE834F0B96AAA5A8B5484111111111111111";

template <typename Key>
Key key_of(int32_t type) {
    Key key{};
    key.type = static_cast<decltype(key.type)>(type);
    std::copy(std::begin(kTestKey), std::end(kTestKey), key.key);
    return key;
}

// Worked out with the openssl program: enc -des-ecb and -des-ede, the latter two with -d.
TEST(Enb, PreparesWorkingKeysAndData) {
    char key[33];
    const auto master = key_of<AbecsMk>(ABECS_MK_TYPE_TDES);
    const auto des = key_of<AbecsMk>(ABECS_MK_TYPE_DES);
    EXPECT_EQ(abecs_cmd_enb_encrypt_wk(kWorkingKey, &master, key), key);
    EXPECT_STREQ(key, "3eb3b72576bbbe834f0b96aaa5a8b548");
    EXPECT_STREQ(abecs_cmd_enb_encrypt_wk("1122334455667788", &master, key), "3eb3b72576bbbe8308d7b4fb629d0885")
        << "as though zeros followed";
    EXPECT_STREQ(abecs_cmd_enb_encrypt_wk(kWorkingKey, &des, key), "b4cc3fd9d8d95214a024e6d986fdcdb0");
    for (const int32_t type : {ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES, ABECS_WK_PAN_TYPE_TDES_RSA}) {
        const auto panKey = key_of<AbecsWkPan>(type);
        char data[17] = "4111111111111111";
        EXPECT_EQ(abecs_cmd_enb_encode_data(data, &panKey, data), data) << "in place, too";
        EXPECT_STREQ(data, type == ABECS_WK_PAN_TYPE_DES ? "bec8c7b720b1ed83" : "64b02ae35d82e5ce");
    }
}

// What a helper refuses, it raises once, and leaves the caller's text as it was.
TEST(Enb, HelpersCheckTheirArgumentsInOrder) {
    char text[33] = "kept";
    // A key of type -1 is none at all.
    const auto refused = [](const char* detail, auto helper, const char* clear, auto key, char* out) {
        EXPECT_REFUSED(kArgument, detail, helper(clear, key.type < 0 ? nullptr : &key, out));
    };
    const auto encrypt = abecs_cmd_enb_encrypt_wk;
    const auto encode = abecs_cmd_enb_encode_data;
    const char* const noRoom = "Destination buffer does not have enough room for decoded data";
    refused("Missing 'mk'", encrypt, "x", key_of<AbecsMk>(-1), nullptr);
    refused("Missing 'out'", encrypt, "x", key_of<AbecsMk>(2), nullptr);
    refused("Invalid enumerator for AbecsMkType_E: 2", encrypt, "x", key_of<AbecsMk>(2), text);
    refused(noRoom, encrypt, "11223344556677889900AABBCCDDEEFF00", key_of<AbecsMk>(0), text);
    refused("Invalid hex string", encrypt, "1122334455667788x", key_of<AbecsMk>(0), text);
    refused("Missing 'wkPan'", encode, "x", key_of<AbecsWkPan>(-1), nullptr);
    refused("Missing 'out'", encode, "x", key_of<AbecsWkPan>(3), nullptr);
    refused("Invalid enumerator for AbecsWkPanType_E: 3", encode, "x", key_of<AbecsWkPan>(3), text);
    refused(noRoom, encode, "411111111111111100", key_of<AbecsWkPan>(1), text);
    EXPECT_STREQ(text, "kept");
}

TEST(Enb, SendsTheBlockAndReadsItEnciphered) {
    const auto reads = [](const Data& data, const Text& request, const std::string& response, const Outcome& expected,
                          const char* read) {
        char out[17] = "kept";
        exchanges(request, "ENB000" + response, expected, abecs_cmd_enb, &data, out);
        EXPECT_STREQ(out, read) << response;
    };
    reads(kSimple, kRequest, "01646df6741E1E2B68C", kOk, "46df6741E1E2B68C");
    reads({ABECS_CMD_ENB_METHOD_0, 99, "", "0123456789abcdef"}, "ENB051099" + repeated("30", 16) + "0123456789ABCDEF",
          "99930DF6741E1E2B630", kOk, "DF6741E1E2B630");
}

// In the order of the checks, the last of them first: each fault is added to those before and hides them.
TEST(Enb, ChecksTheDataInOrder) {
    Data data = kSimple;
    char out[17] = "kept";
    const auto refused = [&](auto& field, auto wrong, const Refusal& refusal) {
        field = static_cast<std::remove_reference_t<decltype(field)>>(wrong);
        refuses(refusal, abecs_cmd_enb, &data, out);
    };
    std::memset(data.data, '0', 17);
    refused(data.data[0], '0', "Field does not have enough room for data");
    std::memset(data.wkEnc, '0', 33);
    refused(data.wkEnc[0], '0', "Field does not have enough room for data");
    refused(data.keyIdx, 100, "Number length (3) is greater than field length (2)");
    refused(data.method, 2, "Invalid enumerator for AbecsCmdEnbMethod_E: 2");
    refuses("'cmdData' is NULL", abecs_cmd_enb, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_enb, &kSimple, nullptr);
    EXPECT_STREQ(out, "kept");
}

}  // namespace
