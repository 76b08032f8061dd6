// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

// The outputs of the calls below.
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

int32_t last_tags(AbecsComm* link, const char* tags) { return abecs_cmd_gen_03_02(link, tags, &out.tags); }
int32_t slot_tags(AbecsComm* link, const char* tags) { return abecs_cmd_gen_04_04(link, tags, &out.tags); }

int32_t encipher(AbecsComm* link, uint8_t idx, const char* digits, uint32_t size) {
    AbecsCmdGen0303CmdData data{idx, {size, {}}};
    std::strncpy(data.input.data, digits, sizeof data.input.data - 1);
    return abecs_cmd_gen_03_03(link, &data, &out.data);
}

int32_t power(AbecsComm* link, int32_t oper, uint8_t slot) {
    const AbecsCmdGen0401CmdData data{static_cast<AbecsCmdGen0401Oper_E>(oper), slot};
    return abecs_cmd_gen_04_01(link, &data, &out.slot);
}

int32_t apdu(AbecsComm* link, uint8_t slot, const char* header, uint8_t size, const char* digits, uint16_t le) {
    AbecsCmdGen0402CmdData data{slot, {}, size, {}, le};
    std::strncpy(data.apduHeader, header, sizeof data.apduHeader - 1);
    std::strncpy(data.apduData, digits, sizeof data.apduData - 1);
    return abecs_cmd_gen_04_02(link, &data, &out.apdu);
}

TEST(Gen, SendsEachSubCommand) {
    const auto sent = []<typename... Parameters>(const Text& request, int32_t (*function)(AbecsComm*, Parameters...),
                                                 std::type_identity_t<Parameters>... arguments) {
        exchanges({"GEN" + request.text, request.where}, "GEN051", ABECS_RSP_STAT_ST_NOSAM, function, arguments...);
    };
    const std::string tags = repeated("5a", 128);
    const std::string data = repeated("00112233445566ab", 16);
    const std::string most(510, 'f');
    sent("013|02|008|K3|3|1|99|99"_wire, find_keys, 3, 1, 99, 99);
    sent("007|03|002|02"_wire, last_tags, "");
    sent("263|03|258|02"_wire + repeated("5A", 128), last_tags, tags.c_str());
    sent("266|04|261|04|128"_wire + repeated("5A", 128), slot_tags, tags.c_str());
    sent("026|03|021|03|3|07|41111111111111FF"_wire, encipher, 7, "41111111111111ff", 16);
    sent("266|03|261|03|3|99"_wire + repeated("00112233445566AB", 16), encipher, 99, data.c_str(), 256);
    sent("009|04|004|01|4|8"_wire, power, 4, 8);
    sent("022|04|017|02|0|00B2010C|000||000"_wire, apdu, 0, "00b2010C", 0, "", 0);
    sent("024|04|019|02|8|00A40400|001|5F|256"_wire, apdu, 8, "00A40400", 1, "5f", 256);
    sent("532|04|527|02|1|80CA9F17|255"_wire + repeated("FF", 255) + "001", apdu, 1, "80CA9F17", 255, most.c_str(), 1);
    sent("026|04|021|02|1|30CA9F17|002|305F|001"_wire, apdu, 1, "CA9F17", 2, "5F", 1);
}

// The fields of an output and its length, which is 0 when what it counts could not be read.
struct Reader {
    int32_t (*call)(AbecsComm*);
    std::string (*shown)();
    uint32_t (*length)();
};

std::string shown_tags() { return std::to_string(out.tags.len) + "," + out.tags.data; }

const Reader kKeys{[](auto* link) { return find_keys(link, 0, 0, 0, 99); }, [] { return std::string(out.keys); },
                   [] { return 0U; }};
const Reader kLastTags{[](auto* link) { return last_tags(link, ""); }, shown_tags,
                       [] { return uint32_t{out.tags.len}; }};
const Reader kSlotTags{[](auto* link) { return slot_tags(link, ""); }, shown_tags, kLastTags.length};
const Reader kData{[](auto* link) { return encipher(link, 0, "", 0); },
                   [] { return out.data.ksn + ("," + std::to_string(out.data.dataLen)) + "," + out.data.data; },
                   [] { return uint32_t{out.data.dataLen}; }};
const Reader kSlot{[](auto* link) { return power(link, 1, 0); },
                   [] {
                       return std::to_string(out.slot.status1) + "," + std::to_string(out.slot.status2) + ","
                              + std::to_string(out.slot.atrLen) + "," + out.slot.atr;
                   },
                   [] { return uint32_t{out.slot.atrLen}; }};
const Reader kApdu{[](auto* link) { return apdu(link, 0, "00B2010C", 0, "", 0); },
                   [] {
                       return std::to_string(out.apdu.status) + "," + out.apdu.sw + "," + std::to_string(out.apdu.la)
                              + "," + out.apdu.apduData;
                   },
                   [] { return uint32_t{out.apdu.la}; }};

TEST(Gen, ReadsAsMuchAsThereIs) {
    const std::string keys = repeated("01x.\x16", 20);
    const std::string digits = repeated("5f", 256);
    const std::string ksn = "FFFF9876543210e00001";
    const std::string atr = repeated("3B6500002063CB680a", 4);
    const auto fails = [](const Reader& reader, const Text& response, const Outcome& expected) {
        std::memset(&out, '5', sizeof out);
        Link link;
        link.peer.any_request(response.where).response("GEN000" + response.text);
        EXPECT_EQ(outcome_of([&] { return reader.call(link.comm); }), expected) << response.text;
    };
    const auto reads = [&](const Reader& reader, const Text& response, const std::string& expected) {
        fails(reader, response, kOk);
        EXPECT_EQ(reader.shown(), expected);
    };
    const auto refused = [&](const Reader& reader, const Text& response, const Raised& error) {
        fails(reader, response, error);
        EXPECT_EQ(reader.length(), 0U) << response.text;
    };
    reads(kKeys, "103|100"_wire + keys, keys);
    reads(kKeys, "999|003|101more"_wire, "101");
    refused(kKeys, "104|101"_wire + keys + "1", error(kProtocol, "(GEN) GEN_OUTLEN is too big: 101)"));
    // One counts digits, the other bytes.
    const Raised noRoom = error(kArgument, "sizeTo (513) is not enough to store field (length: 514)");
    reads(kLastTags, "011|008|9F170103"_wire, "8,9F170103");
    reads(kSlotTags, "011|004|9F170103"_wire, "4,9F170103");
    reads(kLastTags, "515|512"_wire + digits, "512," + digits);
    reads(kSlotTags, "515|256"_wire + digits, "256," + digits);
    refused(kLastTags, "517|514"_wire + digits + "00", noRoom);
    refused(kSlotTags, "517|257"_wire + digits + "00", noRoom);
    reads(kData, "023|020"_wire + ksn, ksn + ",0,");
    reads(kData, "279|276"_wire + ksn + digits.substr(256), ksn + ",256," + digits.substr(256));
    reads(kData, "031|028|303076543210E0000120|30CD4E09"_wire, "76543210E0000120,8,CD4E09");
    refused(kData, "022|019"_wire + ksn, error(kProtocol, "(GEN/03/03) Invalid GEN_OUTLEN: 19"));
    refused(kData, "280|277"_wire + ksn + digits, error(kProtocol, "(GEN/03/03) Invalid GEN_OUTLEN: 277"));
    // Of an ATR of nine bytes the first nine digits are given.
    reads(kSlot, "079|076|1|1|09"_wire + repeated("30", 27) + atr.substr(54), "1,1,9,3B6500002");
    reads(kSlot, "079|076|7|9|36"_wire + atr, "7,9,36," + atr.substr(36));
    refused(kSlot, "079|076|1|1|37"_wire + atr, error(kProtocol, "GEN0401_ATRLEN is too big (max: 36, returned: 37)"));
    reads(kApdu, "523|520|9|6a82|256"_wire + digits, "9,6a82,256," + digits);
    reads(kApdu, "015|012|0|9000|002|3030"_wire, "0,9000,2,");
    refused(kApdu, "525|522|1|9000|257"_wire + digits + "00",
            error(kProtocol, "G0402_LA is too big (max: 256, returned: 257)"));
}

TEST(Gen, ChecksArgumentsInTheirOrder) {
    const std::string longTags(257, '5');
    const AbecsCmdGen02K3CmdData noKeys{4, 2, 101, 100};
    const AbecsCmdGen0303CmdData noData{100, {8, "x"}};
    const AbecsCmdGen0303CmdData data{99, {16, "x"}};
    const char* const noRoom = "Field does not have enough room for data";
    refuses("'cmdData' is NULL", abecs_cmd_gen_02_k3, nullptr, nullptr);
    refuses("'responseData' is NULL", abecs_cmd_gen_02_k3, &noKeys, nullptr);
    refuses("Invalid value for cmdData->keyType: 4", find_keys, 4, 2, 101, 100);
    refuses("Invalid value for cmdData->keyUse: 2", find_keys, 3, 2, 101, 100);
    refuses("Invalid value for cmdData->idxIni: 101", find_keys, 3, 1, 101, 100);
    refuses("Invalid value for cmdData->idxEnd: 100", find_keys, 3, 1, 99, 100);
    refuses("cmdData->idxIni > cmdData->idxEnd", find_keys, 3, 1, 5, 4);
    refuses("'tags' is NULL", abecs_cmd_gen_03_02, nullptr, nullptr);
    refuses("'tags' is too big (max: 256, requested: 257)", abecs_cmd_gen_03_02, longTags.c_str(), nullptr);
    refuses("'tags' length is not even (length: 3)", abecs_cmd_gen_03_02, "5Ax", nullptr);
    refuses("'out' is NULL", abecs_cmd_gen_03_02, "5x", nullptr);
    refuses("'cmdData' is NULL", abecs_cmd_gen_03_03, nullptr, nullptr);
    refuses("Invalid 'cmdData->idx': 100", abecs_cmd_gen_03_03, &noData, nullptr);
    refuses("'responseData' is NULL", abecs_cmd_gen_03_03, &data, nullptr);
    refuses("Invalid length for 'cmdData->input': 272", encipher, 99, "x", 272);
    refuses(noRoom, encipher, 99, "41111111111111ff00", 16);
    AbecsCmdGen0303CmdData unended{99, {256, {}}};
    std::memset(unended.input.data, '5', sizeof unended.input.data);
    refuses(noRoom, abecs_cmd_gen_03_03, &unended, &out.data);
    refuses("Invalid enumerator for AbecsCmdGen0401Oper_E: 5", power, 5, 9);
    refuses("Invalid value for cmdData->slot: 9", power, 4, 9);
    refuses("'cmdData->slot' is invalid: 9", apdu, 9, "x", 0, "", 257);
    refuses("'cmdData->le' is invalid: 257", apdu, 8, "x", 0, "", 257);
    refuses(noRoom, apdu, 8, "00B2010C", 1, "1122", 256);
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
    const auto encodes = [](int32_t type, const std::string& clear, uint32_t size, const std::string& expected) {
        const AbecsWkPan key = pan_key(type);
        AbecsCmdGen0303Data data = data_of(clear);
        data.size = size;
        AbecsCmdGen0303Data encoded{};
        for (AbecsCmdGen0303Data* to : {&encoded, &data}) {
            EXPECT_EQ(abecs_cmd_gen_03_03_encode_data(&data, &key, to), to);
            EXPECT_EQ(std::string(to->data, expected.size()), expected);
            EXPECT_EQ(to->size, expected.size());
        }
        EXPECT_EQ(encoded.data, expected);
    };
    encodes(0, "41111111111111110011223344556677", 32, "6db95c87a27b8cecbb33e3aa4963b083");
    encodes(1, "41111111111111110011223344556677", 32, "5d3d5a8e5c5a5d1271065ecf66b7aef6");
    encodes(2, repeated("4111111111111111", 16), 256, repeated("5d3d5a8e5c5a5d12", 16));
}

TEST(Gen0303EncodeData, ChecksItsArgumentsInTheirOrder) {
    const AbecsCmdGen0303Data bad = data_of("411111111111111x");
    const AbecsCmdGen0303Data tooLong{272, "x"};
    const AbecsWkPan des = pan_key(0);
    const AbecsWkPan noKey = pan_key(3);
    AbecsCmdGen0303Data encoded = data_of("old");
    const auto refused = [&](const char* detail, const AbecsCmdGen0303Data* clear, const AbecsWkPan* key,
                             AbecsCmdGen0303Data* to) {
        EXPECT_REFUSED(kArgument, detail, abecs_cmd_gen_03_03_encode_data(clear, key, to));
    };
    refused("Invalid length for 'clearData': 272", &tooLong, nullptr, nullptr);
    refused("Missing 'wkPan'", &bad, nullptr, nullptr);
    refused("Missing 'out'", &bad, &noKey, nullptr);
    refused("Invalid enumerator for AbecsWkPanType_E: 3", &bad, &noKey, &encoded);
    refused("Invalid hex string", &bad, &des, &encoded);
    EXPECT_STREQ(encoded.data, "old");
}

TEST(Gen0403, IsSentAndReadsTheVerdict) {
    AbecsCmdGen0403CmdData longest{8, "00200080", '2', 99, 99, {}};
    std::memset(longest.message, '\xE9', sizeof longest.message - 1);
    sends("GEN053|04|048|03|8|00200080|2|99|99"_wire + std::string(32, '\xE9'), abecs_cmd_gen_04_03, &longest);
    const AbecsCmdGen0403CmdData data{0, "00200080", 'b', 0, 12, "?"};
    AbecsCmdGen0403RspData verdict{};
    Link link;
    link.peer.request("GEN053|04|048|03|0|00200080|B|00|12|?"_wire + std::string(31, ' '));
    EXPECT_EQ(abecs_cmd_gen_04_03(link.comm, &data), KOR_RESULT_OK);
    polls_on(link, "GEN000|008|005|1|63C2"_wire, kOk, abecs_cmd_gen_04_03_response, &verdict, nullptr);
    EXPECT_EQ(verdict.status, 1);
    EXPECT_STREQ(verdict.sw, "63C2");
}

TEST(Gen0403, ChecksItsArgumentsInTheirOrder) {
    refuses("'cmdData' is NULL", abecs_cmd_gen_04_03, nullptr);
    const std::pair<Refusal, AbecsCmdGen0403CmdData> rows[] = {
        {"'cmdData->slot' is invalid: 9", {9, "x", 'g', 101, 100, "\r"}},
        {"'cmdData->format' is invalid: g", {8, "x", 'g', 101, 100, "\r"}},
        {"'cmdData->pinMinDigits' is invalid: 101", {8, "x", 'A', 101, 100, "\r"}},
        {"'cmdData->pinMaxDigits' is invalid: 100", {8, "x", 'A', 99, 100, "\r"}},
        {"'cmdData->pinMinDigits (5)' is greater than cmdData->pinMaxDigits (4)", {8, "x", 'A', 5, 4, "\r"}},
    };
    for (const auto& [refusal, data] : rows) { refuses(refusal, abecs_cmd_gen_04_03, &data); }
    AbecsCmdGen0403CmdData longMessage{8, "00200080", 'A', 4, 4, {}};
    std::memset(longMessage.message, '5', sizeof longMessage.message);
    refuses("Field does not have enough room for data", abecs_cmd_gen_04_03, &longMessage);
}

}  // namespace
