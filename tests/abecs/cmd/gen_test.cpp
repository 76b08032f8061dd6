// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gen.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using support::repeated;
using Call = int32_t (*)(AbecsComm*);

// The outputs of the calls below, which a raise leaves with nothing to destroy.
struct Output {
    char keys[101];
    AbecsCmdGenTagsOut tags;
    AbecsCmdGen0303RspData data;
    AbecsCmdGen0401RspData slot;
    AbecsCmdGen0402RspData apdu;
} out;

int32_t find_keys(AbecsComm* link, uint8_t type, uint8_t use, uint8_t first, uint8_t last) {
    const AbecsCmdGen02K3CmdData data{type, use, first, last};
    return abecs_cmd_gen_02_k3(link, &data, out.keys);
}

int32_t encipher(AbecsComm* link, uint8_t idx, const char* digits, uint32_t size) {
    AbecsCmdGen0303CmdData data{idx, {size, {}}};
    std::strncpy(data.input.data, digits, sizeof data.input.data - 1);
    return abecs_cmd_gen_03_03(link, &data, &out.data);
}

int32_t power(AbecsComm* link, int32_t oper, uint8_t slot) {
    const AbecsCmdGen0401CmdData data{static_cast<AbecsCmdGen0401Oper_E>(oper), slot};
    return abecs_cmd_gen_04_01(link, &data, &out.slot);
}

int32_t exchange(AbecsComm* link, uint8_t slot, const char* header, uint8_t size, const char* digits, uint16_t le) {
    AbecsCmdGen0402CmdData data{slot, {}, size, {}, le};
    std::strncpy(data.apduHeader, header, sizeof data.apduHeader - 1);
    std::strncpy(data.apduData, digits, sizeof data.apduData - 1);
    return abecs_cmd_gen_04_02(link, &data, &out.apdu);
}

const std::string kMostTags = repeated("5a", 128);
const std::string kMostData = repeated("00112233445566ab", 16);

TEST(Gen, SendsEachSubCommand) {
    static const std::string most(510, 'f');
    const std::pair<std::string, Call> rows[] = {
        {"013|02|008|K3|0|0|00|00"_wire, [](auto* link) { return find_keys(link, 0, 0, 0, 0); }},
        {"013|02|008|K3|3|1|99|99"_wire, [](auto* link) { return find_keys(link, 3, 1, 99, 99); }},
        {"007|03|002|02"_wire, [](auto* link) { return abecs_cmd_gen_03_02(link, "", &out.tags); }},
        {"263|03|258|02"_wire + repeated("5A", 128),
         [](auto* link) { return abecs_cmd_gen_03_02(link, kMostTags.c_str(), &out.tags); }},
        {"010|04|005|04|000"_wire, [](auto* link) { return abecs_cmd_gen_04_04(link, "", &out.tags); }},
        {"266|04|261|04|128"_wire + repeated("5A", 128),
         [](auto* link) { return abecs_cmd_gen_04_04(link, kMostTags.c_str(), &out.tags); }},
        {"010|03|005|03|3|00"_wire, [](auto* link) { return encipher(link, 0, "", 0); }},
        {"026|03|021|03|3|07|41111111111111FF"_wire,
         [](auto* link) { return encipher(link, 7, "41111111111111ff", 16); }},
        {"266|03|261|03|3|99"_wire + repeated("00112233445566AB", 16),
         [](auto* link) { return encipher(link, 99, kMostData.c_str(), 256); }},
        {"009|04|004|01|1|0"_wire, [](auto* link) { return power(link, 1, 0); }},
        {"009|04|004|01|4|8"_wire, [](auto* link) { return power(link, 4, 8); }},
        {"022|04|017|02|0|00B2010C|000||000"_wire, [](auto* link) { return exchange(link, 0, "00b2010C", 0, "", 0); }},
        {"024|04|019|02|8|00A40400|001|5F|256"_wire,
         [](auto* link) { return exchange(link, 8, "00A40400", 1, "5f", 256); }},
        {"532|04|527|02|1|80CA9F17|255"_wire + repeated("FF", 255) + "001",
         [](auto* link) { return exchange(link, 1, "80CA9F17", 255, most.c_str(), 1); }},
        {"026|04|021|02|1|30CA9F17|002|305F|001"_wire,
         [](auto* link) { return exchange(link, 1, "CA9F17", 2, "5F", 1); }},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("GEN" + row.first).response("GEN051").request("GEN" + row.first).response("GEN000003");
        EXPECT_EQ(row.second(link.comm), 51);
        EXPECT_EQ(support::raised_by([&] { row.second(link.comm); }),
                  support::error(6, "Buffer does not have enough data (requested: 3, available: 0)"));
    }
}

struct SubCommand {
    std::string request;
    Call call;
    std::string (*shown)();
    uint32_t (*length)() = nullptr;
};

const SubCommand kKeys{"013|02|008|K3|0|0|00|99"_wire, [](auto* link) { return find_keys(link, 0, 0, 0, 99); },
                       [] { return std::string(out.keys); }};
const SubCommand kLastTags{"007|03|002|02"_wire, [](auto* link) { return abecs_cmd_gen_03_02(link, "", &out.tags); },
                           [] { return std::to_string(out.tags.len) + "," + out.tags.data; },
                           [] { return uint32_t{out.tags.len}; }};
const SubCommand kSlotTags{"010|04|005|04|000"_wire,
                           [](auto* link) { return abecs_cmd_gen_04_04(link, "", &out.tags); }, kLastTags.shown,
                           kLastTags.length};
const SubCommand kData{"010|03|005|03|3|00"_wire, [](auto* link) { return encipher(link, 0, "", 0); },
                       [] { return out.data.ksn + ("," + std::to_string(out.data.dataLen)) + "," + out.data.data; },
                       [] { return out.data.dataLen; }};
const SubCommand kSlot{"009|04|004|01|1|0"_wire, [](auto* link) { return power(link, 1, 0); },
                       [] {
                           return std::to_string(out.slot.status1) + "," + std::to_string(out.slot.status2) + ","
                                  + std::to_string(out.slot.atrLen) + "," + out.slot.atr;
                       },
                       [] { return uint32_t{out.slot.atrLen}; }};
const SubCommand kApdu{"022|04|017|02|0|00B2010C|000||000"_wire,
                       [](auto* link) { return exchange(link, 0, "00B2010C", 0, "", 0); },
                       [] {
                           return std::to_string(out.apdu.status) + "," + out.apdu.sw + ","
                                  + std::to_string(out.apdu.la) + "," + out.apdu.apduData;
                       },
                       [] { return uint32_t{out.apdu.la}; }};

TEST(Gen, ReadsAsMuchAsThereIs) {
    const std::string keys = repeated("01x.\x16", 20);
    const std::string digits = repeated("5f", 256);
    const std::string ksn = "FFFF9876543210e00001";
    const std::string atr = repeated("3B6500002063CB680a", 4);
    const auto few = [](int requested, int available) {
        return "Buffer does not have enough data (requested: " + std::to_string(requested)
               + ", available: " + std::to_string(available) + ")";
    };
    // The code of an error with its detail, or 0 with what was read.
    const auto reads = [](const SubCommand& sub, const std::string& response, int16_t code,
                          const std::string& expected) {
        Link link;
        link.peer.request("GEN" + sub.request).response("GEN000" + response);
        std::memset(&out, '5', sizeof out);
        int32_t stat = 0;
        EXPECT_EQ(support::raised_by([&] { stat = sub.call(link.comm); }),
                  code == 0 ? support::Raised{} : support::error(code, expected));
        EXPECT_EQ(stat, 0);
        if (code == 0) { EXPECT_EQ(sub.shown(), expected); }
        // What cannot be read has no length: none is left that its text has no room for.
        if (code != 0 && sub.length != nullptr) { EXPECT_EQ(sub.length(), 0U) << response; }
    };
    reads(kKeys, "103|100"_wire + keys, 0, keys);
    reads(kKeys, "999|003|101more"_wire, 0, "101");
    reads(kKeys, "003|000"_wire, 0, "");
    reads(kKeys, "104|101"_wire + keys + "1", 12, "(GEN) GEN_OUTLEN is too big: 101)");
    reads(kKeys, "006|003|10"_wire, 6, few(3, 2));
    // One counts digits, the other bytes.
    reads(kLastTags, "011|008|9F170103"_wire, 0, "8,9F170103");
    reads(kSlotTags, "011|004|9F170103"_wire, 0, "4,9F170103");
    reads(kLastTags, "515|512"_wire + digits, 0, "512," + digits);
    reads(kSlotTags, "515|256"_wire + digits, 0, "256," + digits);
    reads(kSlotTags, "003|000"_wire, 0, "0,");
    reads(kLastTags, "008|005|9F170"_wire, 2, "fieldLen (5) is not an even number");
    reads(kLastTags, "517|514"_wire + digits + "00", 2, "sizeTo (513) is not enough to store field (length: 514)");
    reads(kSlotTags, "517|257"_wire + digits + "00", 2, "sizeTo (513) is not enough to store field (length: 514)");
    reads(kData, "023|020"_wire + ksn, 0, ksn + ",0,");
    reads(kData, "279|276"_wire + ksn + digits.substr(256), 0, ksn + ",256," + digits.substr(256));
    reads(kData, "031|028|303076543210E0000120|30CD4E"_wire, 6, few(8, 6));
    reads(kData, "031|028|303076543210E0000120|30CD4E09"_wire, 0, "76543210E0000120,8,CD4E09");
    reads(kData, "022|019"_wire + ksn, 12, "(GEN/03/03) Invalid GEN_OUTLEN: 19");
    reads(kData, "280|277"_wire + ksn + digits, 12, "(GEN/03/03) Invalid GEN_OUTLEN: 277");
    // Of an ATR of nine bytes the first nine digits are given.
    reads(kSlot, "079|076|1|1|09"_wire + repeated("30", 27) + atr.substr(54), 0, "1,1,9,3B6500002");
    reads(kSlot, "079|076|7|9|36"_wire + atr, 0, "7,9,36," + atr.substr(36));
    reads(kSlot, "079|076|0|0|00"_wire + repeated("30", 36), 0, "0,0,0,");
    reads(kSlot, "079|076|1|1|37"_wire + atr, 12, "GEN0401_ATRLEN is too big (max: 36, returned: 37)");
    reads(kSlot, "079|076|1|1|09"_wire + atr.substr(1), 6, few(72, 71));
    reads(kApdu, "011|008|0|9000|000"_wire, 0, "0,9000,0,");
    reads(kApdu, "523|520|9|6a82|256"_wire + digits, 0, "9,6a82,256," + digits);
    reads(kApdu, "015|012|0|9000|002|3030"_wire, 0, "0,9000,2,");
    reads(kApdu, "525|522|1|9000|257"_wire + digits + "00", 12, "G0402_LA is too big (max: 256, returned: 257)");
    reads(kApdu, "525|522|1|9000|002|6F0"_wire, 6, few(4, 3));
}

TEST(Gen, ChecksArgumentsInTheirOrder) {
    const std::string longTags(257, '5');
    const AbecsCmdGen02K3CmdData noKeys{4, 2, 101, 100};
    const AbecsCmdGen0303CmdData noData{100, {8, "x"}};
    const AbecsCmdGen0303CmdData data{99, {16, "x"}};
    const AbecsCmdGen0401CmdData noSlot{static_cast<AbecsCmdGen0401Oper_E>(0), 9};
    const AbecsCmdGen0402CmdData noApdu{9, "x", 0, "", 257};
    Link open;
    AbecsComm* const link = open.comm;
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gen_02_k3(link, nullptr, nullptr));
    EXPECT_REFUSED(2, "'responseData' is NULL", abecs_cmd_gen_02_k3(link, &noKeys, nullptr));
    EXPECT_REFUSED(2, "Invalid value for cmdData->keyType: 4", find_keys(link, 4, 2, 101, 100));
    EXPECT_REFUSED(2, "Invalid value for cmdData->keyUse: 2", find_keys(link, 3, 2, 101, 100));
    EXPECT_REFUSED(2, "Invalid value for cmdData->idxIni: 101", find_keys(link, 3, 1, 101, 100));
    EXPECT_REFUSED(2, "Invalid value for cmdData->idxEnd: 100", find_keys(link, 3, 1, 99, 100));
    EXPECT_REFUSED(2, "cmdData->idxIni > cmdData->idxEnd", find_keys(link, 3, 1, 5, 4));
    EXPECT_REFUSED(2, "'tags' is NULL", abecs_cmd_gen_03_02(link, nullptr, nullptr));
    EXPECT_REFUSED(2, "'tags' is too big (max: 256, requested: 257)",
                   abecs_cmd_gen_03_02(link, longTags.c_str(), nullptr));
    EXPECT_REFUSED(2, "'tags' length is not even (length: 3)", abecs_cmd_gen_03_02(link, "5Ax", nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gen_03_02(link, "5x", nullptr));
    EXPECT_REFUSED(2, "Invalid hex byte at index 2", abecs_cmd_gen_03_02(link, "5A5x", &out.tags));
    EXPECT_REFUSED(2, "'tags' is too big (max: 256, requested: 257)",
                   abecs_cmd_gen_04_04(link, longTags.c_str(), nullptr));
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gen_03_03(link, nullptr, nullptr));
    EXPECT_REFUSED(2, "Invalid 'cmdData->idx': 100", abecs_cmd_gen_03_03(link, &noData, nullptr));
    EXPECT_REFUSED(2, "'responseData' is NULL", abecs_cmd_gen_03_03(link, &data, nullptr));
    EXPECT_REFUSED(2, "Invalid length for 'cmdData->input': 8", encipher(link, 99, "x", 8));
    EXPECT_REFUSED(2, "Invalid length for 'cmdData->input': 272", encipher(link, 99, "x", 272));
    EXPECT_REFUSED(2, "Invalid hex byte at index 0", encipher(link, 99, "x", 256));
    EXPECT_REFUSED(2, "Field does not have enough room for data", encipher(link, 99, "41111111111111ff00", 16));
    EXPECT_REFUSED(2, "Field does not have enough room for data", encipher(link, 99, "00", 0));
    AbecsCmdGen0303CmdData unended{99, {256, {}}};
    std::memset(unended.input.data, '5', sizeof unended.input.data);
    EXPECT_REFUSED(2, "Field does not have enough room for data", abecs_cmd_gen_03_03(link, &unended, &out.data));
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gen_04_01(link, nullptr, nullptr));
    EXPECT_REFUSED(2, "'responseData' is NULL", abecs_cmd_gen_04_01(link, &noSlot, nullptr));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdGen0401Oper_E: 0", power(link, 0, 9));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdGen0401Oper_E: 5", power(link, 5, 9));
    EXPECT_REFUSED(2, "Invalid value for cmdData->slot: 9", power(link, 4, 9));
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gen_04_02(link, nullptr, nullptr));
    EXPECT_REFUSED(2, "'responseData' is NULL", abecs_cmd_gen_04_02(link, &noApdu, nullptr));
    EXPECT_REFUSED(2, "'cmdData->slot' is invalid: 9", exchange(link, 9, "x", 0, "", 257));
    EXPECT_REFUSED(2, "'cmdData->le' is invalid: 257", exchange(link, 8, "x", 0, "", 257));
    EXPECT_REFUSED(2, "Invalid hex byte at index 6", exchange(link, 8, "00B2010", 0, "", 256));
    EXPECT_REFUSED(2, "Field does not have enough room for data", exchange(link, 8, "00B2010C", 1, "1122", 256));
}

AbecsWkPan pan_key(int32_t type) {
    return {static_cast<AbecsWkPanType_E>(type),
            {0x0F, 0x1E, 0x2D, 0x3C, 0x4B, 0x5A, 0x69, 0x78, 0x87, 0x96, 0xA5, 0xB4, 0xC3, 0xD2, 0xE1, 0xF0}};
}

AbecsCmdGen0303Data data_of(const std::string& digits) {
    AbecsCmdGen0303Data data{static_cast<uint32_t>(digits.size()), {}};
    digits.copy(data.data, sizeof data.data);
    return data;
}

// Worked out with the openssl program.
TEST(Gen0303EncodeData, DeciphersTheClearData) {
    AbecsCmdGen0303Data encoded{};
    const auto encodes = [&](int32_t type, const std::string& clear, const std::string& expected) {
        const AbecsWkPan key = pan_key(type);
        AbecsCmdGen0303Data data = data_of(clear);
        EXPECT_EQ(abecs_cmd_gen_03_03_encode_data(&data, &key, &encoded), &encoded);
        EXPECT_EQ(encoded.data, expected);
        EXPECT_EQ(encoded.size, expected.size());
        EXPECT_EQ(abecs_cmd_gen_03_03_encode_data(&data, &key, &data), &data);
        EXPECT_EQ(data.data, expected);
    };
    encodes(0, "41111111111111110011223344556677", "6db95c87a27b8cecbb33e3aa4963b083");
    encodes(2, repeated("4111111111111111", 16), repeated("5d3d5a8e5c5a5d12", 16));
    encodes(1, "41111111111111110011223344556677", "5d3d5a8e5c5a5d1271065ecf66b7aef6");
    AbecsCmdGen0303Data longer = data_of("41111111111111110011223344556677");
    longer.size = 16;
    const AbecsWkPan des = pan_key(0);
    EXPECT_EQ(abecs_cmd_gen_03_03_encode_data(&longer, &des, &encoded), &encoded);
    EXPECT_STREQ(encoded.data, "6db95c87a27b8cec");
    EXPECT_EQ(encoded.size, 16U);
    const AbecsWkPan key = pan_key(1);
    const AbecsCmdGen0303Data none{};
    EXPECT_RAISES(2, "'szData' is zero", abecs_cmd_gen_03_03_encode_data(&none, &key, &encoded));
}

TEST(Gen0303EncodeData, ChecksItsArgumentsInTheirOrder) {
    const AbecsCmdGen0303Data good = data_of("4111111111111111");
    const AbecsCmdGen0303Data bad = data_of("411111111111111x");
    const AbecsCmdGen0303Data tooShort{8, "x"};
    const AbecsCmdGen0303Data tooLong{272, "x"};
    const AbecsCmdGen0303Data noSize{0, "x"};
    const AbecsWkPan des = pan_key(0);
    const AbecsWkPan noKeys[] = {pan_key(3), pan_key(-1)};
    AbecsCmdGen0303Data encoded = data_of("old");
    const auto refused = [&](const char* detail, const AbecsCmdGen0303Data* clear, const AbecsWkPan* key,
                             AbecsCmdGen0303Data* to) {
        EXPECT_RAISES(2, detail, abecs_cmd_gen_03_03_encode_data(clear, key, to));
        const support::ReturningRaises handler;
        EXPECT_EQ(abecs_cmd_gen_03_03_encode_data(clear, key, to), nullptr) << detail;
        EXPECT_EQ(handler.all(), support::errors(2, {detail}));
    };
    refused("Invalid length for 'clearData': 8", &tooShort, nullptr, nullptr);
    refused("Invalid length for 'clearData': 272", &tooLong, nullptr, nullptr);
    refused("Missing 'wkPan'", &bad, nullptr, nullptr);
    refused("Missing 'out'", &bad, noKeys, nullptr);
    refused("Invalid enumerator for AbecsWkPanType_E: 3", &bad, noKeys, &encoded);
    refused("Invalid enumerator for AbecsWkPanType_E: -1", &good, noKeys + 1, &encoded);
    refused("Invalid hex string", &bad, &des, &encoded);
    refused("'szHex' is zero", &noSize, &des, &encoded);
    EXPECT_STREQ(encoded.data, "old");
}

TEST(Gen0403, IsSentPolledAndAborted) {
    const auto polled = abecs_cmd_gen_04_03_response;
    AbecsCmdGen0403RspData verdict{};
    const auto waits = [&](const AbecsCmdGen0403CmdData& data, const std::string& request) {
        const auto send = [&](AbecsComm* link) { abecs_cmd_gen_04_03(link, &data); };
        Link link;
        char text[33] = "";
        EXPECT_REFUSED(3, "GEN/04/03 was not sent yet", polled(link.comm, &verdict, text));
        link.peer.request(request).response("NTM000004WAIT").response("XYZ000").response("GEN00");
        EXPECT_EQ(link.call(abecs_cmd_gen_04_03)(&data), KOR_RESULT_OK);
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GEN/04/03");
        EXPECT_EQ(link.call(polled)(&verdict, text), -2);
        EXPECT_STREQ(text, "WAIT");
        EXPECT_RAISES(12, "(GEN/04/03) Invalid RSP_ID: XYZ)", polled(link.comm, &verdict, text));
        EXPECT_RAISES(12, "Unrecognized response", polled(link.comm, &verdict, nullptr));
        link.peer.response("GEN000|008|005|1|63C2"_wire).request(request).response("ERR013");
        EXPECT_EQ(link.call(polled)(&verdict, text), 0);
        EXPECT_EQ(verdict.status, 1);
        EXPECT_STREQ(verdict.sw, "63C2");
        EXPECT_NO_RAISE(send(link.comm));
        EXPECT_EQ(link.call(polled)(&verdict, text), 13);
        link.peer.request(request).accept_can();
        EXPECT_NO_RAISE(send(link.comm), abecs_comm_send_can(link.comm));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    };
    waits({0, "00200080", 'b', 0, 12, "?"}, "GEN053|04|048|03|0|00200080|B|00|12|?"_wire + std::string(31, ' '));
    AbecsCmdGen0403CmdData longest{8, "00200080", '2', 99, 99, {}};
    std::memset(longest.message, '\xE9', sizeof longest.message - 1);
    waits(longest, "GEN053|04|048|03|8|00200080|2|99|99"_wire + std::string(32, '\xE9'));
}

TEST(Gen0403, ChecksItsArgumentsInTheirOrder) {
    Link link;
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_gen_04_03(link.comm, nullptr));
    EXPECT_REFUSED(2, "'rspDataOut' is NULL", abecs_cmd_gen_04_03_response(link.comm, nullptr, nullptr));
    const std::pair<const char*, AbecsCmdGen0403CmdData> rows[] = {
        {"'cmdData->slot' is invalid: 9", {9, "x", 'g', 101, 100, "\r"}},
        {"'cmdData->format' is invalid: g", {8, "x", 'g', 101, 100, "\r"}},
        {"'cmdData->format' is invalid: /", {8, "x", '/', 101, 100, "\r"}},
        {"'cmdData->pinMinDigits' is invalid: 101", {8, "x", 'A', 101, 100, "\r"}},
        {"'cmdData->pinMaxDigits' is invalid: 100", {8, "x", 'A', 99, 100, "\r"}},
        {"'cmdData->pinMinDigits (5)' is greater than cmdData->pinMaxDigits (4)", {8, "x", 'A', 5, 4, "\r"}},
    };
    for (const auto& row : rows) { EXPECT_REFUSED(2, row.first, abecs_cmd_gen_04_03(link.comm, &row.second)); }
    const AbecsCmdGen0403CmdData badHeader{8, "002000x0", 'A', 4, 4, "\r"};
    const AbecsCmdGen0403CmdData badMessage{8, "00200080", 'A', 4, 4, "\r"};
    EXPECT_REFUSED(2, "Invalid hex byte at index 6", abecs_cmd_gen_04_03(link.comm, &badHeader));
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 0", abecs_cmd_gen_04_03(link.comm, &badMessage));
    AbecsCmdGen0403CmdData longMessage{8, "00200080", 'A', 4, 4, {}};
    std::memset(longMessage.message, '5', sizeof longMessage.message);
    EXPECT_REFUSED(2, "Field does not have enough room for data", abecs_cmd_gen_04_03(link.comm, &longMessage));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GKY"));
    longMessage.message[32] = '\0';
    EXPECT_REFUSED(3, "Connection is blocked waiting for GKY response", abecs_cmd_gen_04_03(link.comm, &longMessage));
}

}  // namespace
