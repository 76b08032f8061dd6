// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>

#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

// Tracks 1 and 2 and the card number begin with the length that is sent with them.
struct Card {
    std::string track1 = "43B4111111111111111^CARD/TEST^2512201";
    std::string track2 = "294111111111111111=2512201";
    std::string pan = "174111111111111111";
    std::string track3 = {};
    std::string acquirer = "03";
    std::string tail = {};
};

std::string answer(const Card& card, bool layout) {
    return "GCR000|999|06|1|98"_wire + card.acquirer + "Z1" + padded(card.track1, 78)
           + padded(card.track2, layout ? 42 : 39) + (layout ? "" : "100") + padded(card.track3, 104)
           + padded(card.pan, 21) + padded("07CREDIT", 18) + padded("201TEST/CARD", 29) + "301231"
           + std::string(28, '\x16') + "!|076|000"_wire + card.tail;
}

class Gcr : public testing::Test {
protected:
    // Members that are not received keep what was in them.
    AbecsCmdGcrResponse received(const std::string& response, const Outcome& expected = kOk, char kept = '\0') {
        AbecsCmdGcrResponse out;
        std::memset(&out, kept, sizeof out);
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, key_));
        link.comm->panProtected = protected_;
        link.peer.request("GCR");
        EXPECT_NO_RAISE(abecs_cmd_gcr_empty(link.comm));
        polls_on(link, response, expected, abecs_cmd_gcr_response, &out, nullptr);
        return out;
    }

    AbecsCmdGcrResponse read(const Card& card, char kept = '\0') {
        return received(answer(card, protected_), kOk, kept);
    }

    const AbecsWkPan* key_ = nullptr;
    bool protected_ = false;
};

using Texts = std::vector<std::string>;
using Lengths = std::array<uint32_t, 4>;
Lengths lengths_of(const AbecsCmdGcrResponse& out) { return {out.track1Len, out.track2Len, out.track3Len, out.panLen}; }

TEST_F(Gcr, SendsTheRequest) {
    AbecsCmdGcrData data{99, 0, 1234, {24, 2, 29}, {23, 59, 58}, "1234567890", true};
    const auto sendsData = [&](const char* ids, const Text& request) { sends(request, abecs_cmd_gcr, &data, ids); };
    const std::string sent = "9900|000000001234|240229|235958|1234567890"_wire;
    sendsData("", "GCR040" + sent + "00");
    sendsData("010199zZ", "GCR048" + sent + "02|010199zZ"_wire);
    std::string most;
    for (char i = 0; i < 99; ++i) {
        most += {'0', '1', static_cast<char>('A' + i / 10), static_cast<char>('0' + i % 10)};
    }
    sendsData(most.c_str(), "GCR436" + sent + "99" + most);
    // What memory that was never written may hold.
    std::memset(&data.ctlsOn, 2, sizeof data.ctlsOn);
    sendsData(nullptr, "GCR040" + sent + "00");
    data = {1, 99, 999999999999, {0, 12, 31}, {0, 0, 0}, "V1", false};
    sendsData(nullptr, "GCR040|0199|999999999999|001231|000000|V1        |00|0"_wire);
}

TEST_F(Gcr, ChecksItsArgumentsInTheirOrder) {
    AbecsCmdGcrData data{100, 100, 0, {100, 13, 32}, {24, 60, 60}, "V", true};
    const auto refused = [&](const Refusal& refusal, const char* ids) { refuses(refusal, abecs_cmd_gcr, &data, ids); };
    refuses("'gcrData' is NULL", abecs_cmd_gcr, nullptr, nullptr);
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
    refused("Too many records", repeated("0101", 100).c_str());
    refused("Duplicate record ID: 01Zz", "01Zz01Zz");
    std::fill(std::begin(data.tabVer), std::end(data.tabVer), '7');
    refused("Field does not have enough room for data", nullptr);
}

TEST_F(Gcr, ReturnsTheCodeThatWasRaised) {
    Link link;
    for (int i = 0; i < 2; ++i) { link.peer.expect(frame("GCR")).send("04"_hex); }
    EXPECT_REFUSED(kProtocol, "Protocol error (unknown packet response: 0x4)", abecs_cmd_gcr_empty(link.comm));
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GKY"));
    EXPECT_REFUSED(kState, "Connection is blocked waiting for GKY response", abecs_cmd_gcr_empty(link.comm));
}

TEST_F(Gcr, ReadsACard) {
    const AbecsCmdGcrResponse out = read(Card());
    EXPECT_EQ(out.cardType, ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV);
    EXPECT_EQ(out.statChip, ABECS_CMD_GCR_STATCHIP_ERROR_FALLBACK);
    EXPECT_EQ((Texts{out.recIdx, out.track1, out.track2, out.pan, out.appLabel, out.cardholderName}),
              (Texts{"Z1", "B4111111111111111^CARD/TEST^2512201", "4111111111111111=2512201", "4111111111111111",
                     "CREDIT", "TEST/CARD"}));
    EXPECT_EQ(lengths_of(out), (Lengths{43, 29, 0, 17})) << "as sent, but for track 3, which has the text's";
    EXPECT_EQ((std::array<int, 7>{out.appType, out.acqIdx, out.panSeqNum, out.serviceCode, out.expYear, out.expMonth,
                                  out.expDay}),
              (std::array<int, 7>{98, 3, 7, 201, 30, 12, 31}));
    EXPECT_EQ(std::string(out.extData, out.extData + 30), std::string(28, '\x16') + "!" + '\0');
    EXPECT_EQ(out.issuerCountry, 76);
}

TEST_F(Gcr, ReadsWhatTheAcquirerGetsBesides) {
    const auto bytes = [](const auto& member) {
        return std::string(reinterpret_cast<const char*>(&member), sizeof member);
    };
    AbecsCmdGcrResponse out;
    const auto reads = [&](const std::string& sent, const char* stored) {
        out = read({"00", "00", "00", "", "01", sent + padded("TEXT 1", 16) + padded("", 15) + "2"});
        EXPECT_STREQ(out.acqRd01Data, stored);
        EXPECT_STREQ(out.acqRd01Text1, "TEXT 1");
        EXPECT_STREQ(out.acqRd01Text2, "               2");
    };
    const std::string value = "30303030303030303030300102abCDEF";
    reads("10" + value, "0102abCDEF");
    reads("99112233445566778899AABBCCDDEEFF00", "112233445566778899AABBCCDDEEFF00");
    // The members of other acquirers stay as they were.
    out = received("GCR013", ABECS_RSP_STAT_ST_CANCEL, 'k');
    EXPECT_EQ(bytes(out), std::string(sizeof out, 'k'));
    out = read({"00", "00", "00", "", "03", "behind"}, 'k');
    EXPECT_EQ(out.issuerCountry, 76);
    EXPECT_EQ(bytes(out.acqRd01Data) + bytes(out.acqRd01Text1) + bytes(out.acqRd01Text2), std::string(67, 'k'));
    out = read({"00", "00", "00", "", "02", "3012345678"}, 'k');
    EXPECT_STREQ(out.acqRd02Data, "12345678");
    EXPECT_EQ(bytes(out.acqRd01Text1) + bytes(out.acqRd01Text2), std::string(34, 'k'));
}

// Whatever a length says, what was stored bounds what is used.
TEST_F(Gcr, ReadsFullFieldsAndLyingLengths) {
    const AbecsWkPan key{ABECS_WK_PAN_TYPE_DES, {1}};
    const std::string digits(104, '3');
    AbecsCmdGcrResponse out =
        read({"00" + digits.substr(0, 76), "00" + digits.substr(0, 37), "00" + digits.substr(0, 19), digits});
    EXPECT_EQ(out.track1 + std::string(out.track2) + out.pan, digits + digits.substr(0, 28));
    EXPECT_EQ(out.track3, digits);
    EXPECT_EQ(out.track3Len, 104);
    key_ = &key;
    protected_ = true;
    EXPECT_EQ(lengths_of(read({"99", "99", "99"})), (Lengths{0, 0, 0, 99}));
}

// A key that the link does not have any more leaves the layout as it is under a key.
TEST_F(Gcr, TheLayoutGoesWithAMarkOfItsOwn) {
    protected_ = true;
    const AbecsCmdGcrResponse out = read({.track2 = "40" + std::string(40, '7'), .track3 = "5"});
    EXPECT_EQ((Texts{out.track1, out.track2, out.track3, out.pan}),
              (Texts{"B4111111111111111^CARD/TEST^2512201", std::string(40, '7'), "5", "4111111111111111"}));
    EXPECT_EQ(lengths_of(out), (Lengths{43, 40, 1, 17}));
}

TEST_F(Gcr, PutsProtectedCardDataIntoClear) {
    protected_ = true;
    // 4111111111111111, and 378282246310005 with an F, under the key.
    const auto reads = [&](const AbecsWkPan& key, const std::string& digits, const std::string& fifteen) {
        key_ = &key;
        const AbecsCmdGcrResponse out =
            read({"99B" + digits + "^CARD/TEST^2512201", "24" + fifteen + "=2512201123456789", "19" + digits,
                  "01" + digits + "=724"});
        EXPECT_EQ((Texts{out.track1, out.track2, out.track3, out.pan}),
                  (Texts{"B4111111111111111^CARD/TEST^2512201", "378282246310005=2512201", "014111111111111111=724",
                         "4111111111111111"}))
            << "of track 2 as many characters as were announced";
        EXPECT_EQ(lengths_of(out), (Lengths{35, 23, 16, 19})) << "that of track 3 is the card number's";
    };
    reads(test_key(ABECS_WK_PAN_TYPE_DES), "F0157C5DA1787BED", "3EBC0FCC21D3E027");
    reads(test_key(ABECS_WK_PAN_TYPE_TDES_RSA), "69D9405C8462F410", "E7BD6636680F28CA");
    const AbecsWkPan unknown{static_cast<AbecsWkPanType_E>(3), {}};
    key_ = &unknown;
    received(answer({"161234567890123456", "00", "00"}, true), error(kRuntime, "Unhandled case"));
}

TEST(GcrEnumerators, AreNamed) {
    EXPECT_STREQ(abecs_cmd_gcr_stat_chip_to_string(ABECS_CMD_GCR_STATCHIP_NOT_SUPPORTED),
                 "ABECS_CMD_GCR_STATCHIP_NOT_SUPPORTED");
    EXPECT_STREQ(abecs_cmd_gcr_card_type_to_string(ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV),
                 "ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV");
    EXPECT_RAISES(kRuntime, "Unhandled case", abecs_cmd_gcr_stat_chip_to_string(AbecsCmdGcrStatChip_E{3}));
    EXPECT_RAISES(kRuntime, "Unhandled case", abecs_cmd_gcr_card_type_to_string(AbecsCmdGcrCardType_E{4}));
}

}  // namespace
