// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcr.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "quorvel/abecs/pan.h"
#include "tests/abecs/cmd/card_command.h"

namespace {

using namespace support::literals;
using support::Link;

std::string field(std::string text, size_t width) {
    text.resize(width, ' ');
    return text;
}

// Tracks 1 and 2 and the card number begin with the length that is sent with them.
struct Card {
    std::string track1 = "43B4111111111111111^CARD/TEST^2512201";
    std::string track2 = "294111111111111111=2512201";
    std::string pan = "174111111111111111";
    std::string track3 = "";
    std::string acquirer = "03";
    std::string tail = "";
};

std::string answer(const Card& card, bool layout) {
    return "GCR000|999|06|1|98"_wire + card.acquirer + "Z1" + field(card.track1, 78)
           + field(card.track2, layout ? 42 : 39) + (layout ? "" : "100") + field(card.track3, 104)
           + field(card.pan, 21) + field("07CREDIT", 18) + field("201TEST/CARD", 29) + "301231"
           + std::string(28, '\x16') + "!|076|000"_wire + card.tail;
}

AbecsCmdGcrResponse read(Link& link, const Card& card) {
    AbecsCmdGcrResponse out{};
    link.peer.request("GCR").response(answer(card, link.comm->panProtected));
    EXPECT_EQ(link.call(abecs_cmd_gcr_empty)(), KOR_RESULT_OK);
    EXPECT_EQ(link.call(abecs_cmd_gcr_response)(&out, nullptr), 0);
    return out;
}

TEST(Gcr, SendsTheRequest) {
    AbecsCmdGcrData data{99, 0, 1234, {24, 2, 29}, {23, 59, 58}, "1234567890", true};
    const auto expect_sent = [&](const char* ids, const std::string& request, support::Peer::Where where = {}) {
        AbecsCmdGcrResponse out{};
        KorResult_E result = KOR_RESULT_RUNTIME_ERROR;
        const auto send = [&](AbecsComm* link) { result = abecs_cmd_gcr(link, &data, ids); };
        support::expect_exchange("GCR" + request, send, abecs_cmd_gcr_response, &out, "gcrResponse", where);
        EXPECT_EQ(result, KOR_RESULT_OK);
    };
    const std::string sent = "9900|000000001234|240229|235958|1234567890"_wire;
    expect_sent("", "040" + sent + "00");
    expect_sent("010199zZ", "048" + sent + "02|010199zZ"_wire);
    std::string most;
    for (char i = 0; i < 99; ++i) {
        most += {'0', '1', static_cast<char>('A' + i / 10), static_cast<char>('0' + i % 10)};
    }
    expect_sent(most.c_str(), "436" + sent + "99" + most);
    // What memory that was never written may hold.
    std::memset(&data.ctlsOn, 2, sizeof data.ctlsOn);
    expect_sent(nullptr, "040" + sent + "00");
    data.ctlsOn = false;
    expect_sent(nullptr, "040" + sent + "00|0"_wire);
    expect_sent("0101", "044" + sent + "01|0101|0"_wire);
    data = {1, 99, 999999999999, {0, 12, 31}, {0, 0, 0}, "V1", true};
    expect_sent(nullptr, "040|0199|999999999999|001231|000000|V1        |00"_wire);
}

TEST(Gcr, ChecksItsArgumentsInTheirOrder) {
    Link link;
    AbecsCmdGcrData data{100, 100, 1000000000000, {100, 13, 32}, {24, 60, 60}, "V\r", true};
    const auto refused = [&](const char* detail, const char* ids) {
        EXPECT_REFUSED(2, detail, abecs_cmd_gcr(link.comm, &data, ids));
    };
    EXPECT_REFUSED(2, "'gcrData' is NULL", abecs_cmd_gcr(link.comm, nullptr, nullptr));
    refused("gcrData->acqIdxReq (100) is out of range", "x");
    data.acqIdxReq = 99;
    refused("gcrData->appTypReq (100) is out of range", "x");
    data.appTypReq = 99;
    refused("Invalid year: 100", "x");
    data.date = {23, 2, 28};
    refused("Invalid hours: 24", "x");
    data.time = {23, 59, 59};
    refused("AID record ids where supplied and GCR_APPTYPE is not zero", "");
    data.appTypReq = 0;
    refused("Invalid length for aidRecIds: 6", "01-101");
    refused("Invalid char at aidRecIds[6]: (0xE9)", "010101\xE9-");
    refused("Too many records", support::repeated("0101", 100).c_str());
    refused("Duplicate record ID: 0101", "010101020101");
    refused("Duplicate record ID: 01Zz", "01Zz01Zz");
    refused("Number length (13) is greater than field length (12)", nullptr);
    data.amount = 0;
    refused("Invalid character (0x0D) at position 1", nullptr);
    std::fill(std::begin(data.tabVer), std::end(data.tabVer), '7');
    refused("Field does not have enough room for data", nullptr);
}

TEST(Gcr, ReturnsTheCodeThatWasRaised) {
    const AbecsCmdGcrData data{0, 0, 0, {24, 2, 29}, {23, 59, 58}, "", true};
    const auto full = [&](AbecsComm* pinpad) { return abecs_cmd_gcr(pinpad, &data, nullptr); };
    const auto expect_codes = [](const std::string& request, auto send) {
        Link link;
        for (int i = 0; i < 2; ++i) { link.peer.expect(support::frame(request)).send("04"_hex); }
        EXPECT_REFUSED(12, "Protocol error (unknown packet response: 0x4)", send(link.comm));
        EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GKY"));
        EXPECT_REFUSED(3, "Connection is blocked waiting for GKY response", send(link.comm));
    };
    expect_codes("GCR040|0000|000000000000|240229|235958|          |00"_wire, full);
    expect_codes("GCR", abecs_cmd_gcr_empty);
}

TEST(Gcr, ReadsACard) {
    Link link;
    const AbecsCmdGcrResponse out = read(link, Card());
    EXPECT_EQ(out.cardType, ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV);
    EXPECT_EQ(out.statChip, ABECS_CMD_GCR_STATCHIP_ERROR_FALLBACK);
    EXPECT_EQ(out.appType, 98);
    EXPECT_EQ(out.acqIdx, 3);
    EXPECT_STREQ(out.recIdx, "Z1");
    EXPECT_STREQ(out.track1, "B4111111111111111^CARD/TEST^2512201");
    EXPECT_STREQ(out.track2, "4111111111111111=2512201");
    EXPECT_STREQ(out.pan, "4111111111111111");
    EXPECT_EQ((std::array{out.track1Len, out.track2Len, out.panLen}), (std::array<uint8_t, 3>{43, 29, 17}));
    EXPECT_EQ(out.track3Len, 0) << "the text's";
    EXPECT_EQ(out.panSeqNum, 7);
    EXPECT_STREQ(out.appLabel, "CREDIT");
    EXPECT_EQ(out.serviceCode, 201);
    EXPECT_STREQ(out.cardholderName, "TEST/CARD");
    EXPECT_EQ((std::array{out.expYear, out.expMonth, out.expDay}), (std::array<uint8_t, 3>{30, 12, 31}));
    EXPECT_EQ(std::string(out.extData, out.extData + 30), std::string(28, '\x16') + "!" + '\0');
    EXPECT_EQ(out.issuerCountry, 76);
}

TEST(Gcr, ReadsWhatTheAcquirerGetsBesides) {
    Link link;
    const auto reads = [&](const std::string& sent, const char* stored) {
        const AbecsCmdGcrResponse out =
            read(link, {"00", "00", "00", "", "01", sent + field("TEXT 1", 16) + field("", 15) + "2"});
        EXPECT_STREQ(out.acqRd01Data, stored);
        EXPECT_STREQ(out.acqRd01Text1, "TEXT 1");
        EXPECT_STREQ(out.acqRd01Text2, "               2");
    };
    const std::string value = "30303030303030303030300102abCDEF";
    reads("10" + value, "0102abCDEF");
    reads("06" + value, "0102ab");
    reads("99" + value, "0102abCDEF");
    reads("99112233445566778899AABBCCDDEEFF00", "112233445566778899AABBCCDDEEFF00");
    EXPECT_STREQ(read(link, {"00", "00", "00", "", "02", "3012345678"}).acqRd02Data, "12345678");
}

TEST(Gcr, LeavesTheMembersOfOtherAcquirersAsTheyWere) {
    Link link;
    AbecsCmdGcrResponse out;
    const std::string kept(sizeof out, 'k');
    const auto bytes = [](const auto& member) {
        return std::string(reinterpret_cast<const char*>(&member), sizeof member);
    };
    const auto reads = [&](const std::string& response, int32_t stat) {
        std::memset(&out, 'k', sizeof out);
        link.peer.request("GCR").response(response);
        EXPECT_EQ(link.call(abecs_cmd_gcr_empty)(), KOR_RESULT_OK);
        EXPECT_EQ(link.call(abecs_cmd_gcr_response)(&out, nullptr), stat);
    };
    reads("GCR013", 13);
    EXPECT_EQ(bytes(out), kept);
    reads(answer({"00", "00", "00", "", "03", "behind"}, false), 0);
    EXPECT_EQ(out.issuerCountry, 76);
    EXPECT_EQ(bytes(out.acqRd01Data) + bytes(out.acqRd01Text1) + bytes(out.acqRd01Text2), std::string(67, 'k'));
    reads(answer({"00", "00", "00", "", "02", "1112345678"}, false), 0);
    EXPECT_STREQ(out.acqRd02Data, "1112345678");
    EXPECT_EQ(bytes(out.acqRd01Text1) + bytes(out.acqRd01Text2), std::string(34, 'k'));
}

// Whatever a length says, what was stored bounds what is used.
TEST(Gcr, ReadsFullFieldsAndLyingLengths) {
    Link link;
    const AbecsWkPan key{ABECS_WK_PAN_TYPE_DES, {1}};
    const std::string digits(104, '3');
    AbecsCmdGcrResponse out = read(link, {"00" + digits.substr(0, 76), "00" + digits.substr(0, 37),
                                          "00" + digits.substr(0, 19), digits, "03", ""});
    EXPECT_EQ(out.track1 + std::string(out.track2) + out.pan, digits + digits.substr(0, 28));
    EXPECT_EQ(out.track3, digits);
    EXPECT_EQ(out.track3Len, 104);
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &key));
    out = read(link, {"99", "99", "99", "", "03", ""});
    EXPECT_EQ((std::array{out.track1Len, out.track2Len, out.panLen}), (std::array<uint8_t, 3>{0, 0, 99}));
}

// A key that the link does not have any more leaves the layout as it is under a key.
TEST(Gcr, TheLayoutGoesWithAMarkOfItsOwn) {
    Link link;
    link.comm->panProtected = true;
    Card card;
    card.track2 = "40" + std::string(40, '7');
    card.track3 = "5";
    const AbecsCmdGcrResponse out = read(link, card);
    EXPECT_STREQ(out.track1, "B4111111111111111^CARD/TEST^2512201");
    EXPECT_EQ(out.track2, std::string(40, '7'));
    EXPECT_STREQ(out.track3, "5");
    EXPECT_EQ((std::array{out.track1Len, out.track3Len, out.panLen}), (std::array<uint8_t, 3>{43, 1, 17}));
    EXPECT_STREQ(out.pan, "4111111111111111");
    EXPECT_EQ(out.issuerCountry, 76);
}

TEST(Gcr, PutsProtectedCardDataIntoClear) {
    // 4111111111111111, and 378282246310005 with an F, under the key.
    const auto reads = [](const AbecsWkPan& key, const std::string& digits, const std::string& fifteen) {
        // The static text in which the clear form is made.
        const char* work = abecs_pan_decrypt_track2("", 0, &key);
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &key));
        const AbecsCmdGcrResponse out =
            read(link, {"99B" + digits + "^CARD/TEST^2512201", "24" + fifteen + "=2512201123456789", "19" + digits,
                        "01" + digits + "=724", "03", ""});
        EXPECT_STREQ(out.track1, "B4111111111111111^CARD/TEST^2512201");
        EXPECT_STREQ(out.track2, "378282246310005=2512201") << "as many characters as were announced";
        EXPECT_STREQ(out.track3, "014111111111111111=724");
        EXPECT_STREQ(out.pan, "4111111111111111");
        EXPECT_EQ((std::array{out.track1Len, out.track2Len, out.panLen}), (std::array<uint8_t, 3>{35, 23, 19}));
        EXPECT_EQ(out.track3Len, 16) << "that of the card number";
        EXPECT_TRUE(std::all_of(work, work + 129, [](char c) { return c == '\0'; }));
    };
    AbecsWkPan key{ABECS_WK_PAN_TYPE_DES,
                   {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
    reads(key, "F0157C5DA1787BED", "3EBC0FCC21D3E027");
    key.type = ABECS_WK_PAN_TYPE_TDES_RSA;
    reads(key, "69D9405C8462F410", "E7BD6636680F28CA");
}

TEST(Gcr, AMalformedAnswerLeavesTheLinkBlocked) {
    Link link;
    const AbecsWkPan unknown{static_cast<AbecsWkPanType_E>(3), {}};
    const std::string good = answer({"161234567890123456", "00", "00", "", "03", ""}, true);
    AbecsCmdGcrResponse out{};
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &unknown));
    link.peer.request("GCR").response(good.substr(0, 16) + "\x7F" + good.substr(17)).response(good);
    EXPECT_EQ(link.call(abecs_cmd_gcr_empty)(), KOR_RESULT_OK);
    EXPECT_RAISES(6, "Invalid character (0x7F) at position 0", abecs_cmd_gcr_response(link.comm, &out, nullptr));
    EXPECT_RAISES(1, "Unhandled case", abecs_cmd_gcr_response(link.comm, &out, nullptr));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCR");
}

TEST(Gcr, NamesItsEnumerators) {
    const std::map<int, std::string> types{{0, "MAGNETIC"}, {3, "ICC_EMV"}, {5, "CTLS_MAGSTRIPE"}, {6, "CTLS_EMV"}};
    const std::map<int, std::string> stats{{0, "SUCCESS"}, {1, "ERROR_FALLBACK"}, {2, "NOT_SUPPORTED"}};
    const support::ReturningRaises handler;
    const auto name = [](const auto& names, const std::string& prefix, int value) {
        return names.contains(value) ? prefix + names.at(value) : "";
    };
    for (int value = 0; value < 256; ++value) {
        EXPECT_EQ(abecs_cmd_gcr_stat_chip_to_string(static_cast<AbecsCmdGcrStatChip_E>(value)),
                  name(stats, "ABECS_CMD_GCR_STATCHIP_", value));
        EXPECT_EQ(abecs_cmd_gcr_card_type_to_string(static_cast<AbecsCmdGcrCardType_E>(value)),
                  name(types, "ABECS_CMD_GCR_CARD_TYPE_", value));
    }
    EXPECT_EQ(handler.all(), std::vector(252U + 253U, support::error(1, "Unhandled case")));
}

}  // namespace
