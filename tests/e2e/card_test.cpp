// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>

#include "simulator/cards/cards.h"
#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"

namespace {

using namespace quorvel::sim;

// The PIN 1234 with the card numbers of the cards that want it online.
const std::string kVisaBlock = "041225EEEEEEEEEE"_hex;
const std::string kContactlessBlock = "041214FFFCCCCFFD"_hex;

Card card(const char* name) { return Cards::standard().at(name); }
Gestures inserted(const char* name) { return Gestures().insert(card(name)); }

template <size_t Size>
std::string text(const uint8_t (&bytes)[Size]) {
    return {bytes, bytes + Size};
}

class CardSale : public EndToEnd {
protected:
    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, false), ABECS_RSP_STAT_ST_OK); }

    void load_tables() {
        EXPECT_EQ(call(abecs_cmd_tli, 0, "TABLES0001"), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(call(abecs_cmd_tlr, "01010301AB01010302AB01010303AB"), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(call(abecs_cmd_tle), ABECS_RSP_STAT_ST_OK);
    }

    int32_t get_card(const Gestures& gestures, const char* version = "TABLES0001") {
        AbecsCmdGcrData request{0, 99, 1234, {26, 11, 21}, {10, 20, 30}, "", true};
        std::string(version).copy(request.tabVer, sizeof request.tabVer - 1);
        begin("GCR", gestures, abecs_cmd_gcr, &request, nullptr);
        return finish(abecs_cmd_gcr_response, &card_);
    }

    // Every amount goes online.
    int32_t go_on_chip(const Gestures& gestures, bool online = true) {
        AbecsCmdGocData request{};
        request.amount = 1234;
        request.connect = true;
        request.method = ABECS_CMD_GOC_METHOD_MK_WK_TDES;
        to_hex(to_bytes(kEncipheredTdes)).copy(request.wkenc, sizeof request.wkenc);
        request.riskman = online;
        std::string("00000000").copy(request.flrlimit, sizeof request.flrlimit);
        request.tags1len = 4;
        std::string("829F2795").copy(request.tags1, sizeof request.tags1);
        request.tags2len = 2;
        std::string("9F02").copy(request.tags2, sizeof request.tags2);
        begin("GOC", gestures, abecs_cmd_goc, card_.acqIdx, &request);
        chip_ = {};
        return finish(abecs_cmd_goc_response, &chip_);
    }

    int32_t finish_chip(int32_t status, const char* code, const std::string& issuerData = "") {
        AbecsCmdFncData request{};
        request.commSt = status;
        std::string(code).copy(request.arc, sizeof request.arc);
        request.issDatLen = issuerData.size() / 2;
        issuerData.copy(request.issDat, sizeof request.issDat);
        request.tagsLen = 3;
        std::string("8A9F27").copy(request.tags, sizeof request.tags);
        return call(abecs_cmd_fnc, &request, &outcome_);
    }

    [[nodiscard]] std::string emv_data() const { return {chip_.emvData, chip_.emvData + chip_.emvDataLen}; }

    AbecsCmdGcrResponse card_{};
    AbecsCmdGocResponse chip_{};
    AbecsCmdFncResponse outcome_{};
};

TEST_F(CardSale, ReadsAStripe) {
    EXPECT_EQ(get_card(Gestures().swipe(card("mastercard-magnetic")), ""), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(card_.cardType, ABECS_CMD_GCR_CARD_TYPE_MAGNETIC);
    EXPECT_STREQ(card_.track1, "B5555555555554444^CARDHOLDER/MASTERCARD^30121010000000000000");
    EXPECT_STREQ(card_.track2, "5555555555554444=30121010000000000");
    EXPECT_STREQ(card_.track3, "015555555555554444=00000000000000000");
    EXPECT_EQ((std::array{card_.track1Len, card_.track2Len, card_.track3Len}), (std::array<uint8_t, 3>{60, 34, 36}));
    EXPECT_STREQ(card_.pan, "5555555555554444");
    EXPECT_STREQ(card_.cardholderName, "CARDHOLDER/MASTERCARD");
    EXPECT_EQ(card_.serviceCode, 101);
    EXPECT_EQ((std::array{card_.expYear, card_.expMonth, card_.expDay}), (std::array<uint8_t, 3>{30, 12, 31}));
    EXPECT_EQ(card_.issuerCountry, 840);
}

TEST_F(CardSale, TakesAPinOnlineAndFinishesWithTheIssuersAnswer) {
    load_tables();
    EXPECT_EQ(get_card(inserted("visa-chip")), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(card_.cardType, ABECS_CMD_GCR_CARD_TYPE_ICC_EMV);
    EXPECT_STREQ(card_.appLabel, "VISA CREDITO");
    EXPECT_EQ(card_.acqIdx, 3);
    EXPECT_STREQ(card_.recIdx, "01");
    EXPECT_EQ(go_on_chip(Gestures().type("1234")), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(notes_, (std::vector<std::string>{"ENTER THE PIN"}));
    EXPECT_EQ(chip_.decision, 2);
    EXPECT_TRUE(chip_.pinOnline && !chip_.pinOffline && !chip_.signature && !chip_.pinBlocked);
    EXPECT_EQ(tdes_decipher(kTdes, from_digits(text(chip_.pinBlock))), kVisaBlock);
    EXPECT_EQ(emv_data(), "82023800 9F270180 95050000048000 9F0206000000001234"_hex);
    EXPECT_EQ(finish_chip(0, "00", "9108313233343536373871109F1804AABBCCDD86078418000002FFFF"), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(outcome_.decision, 0U);
    EXPECT_STREQ(outcome_.emvData, "8A0230309F270140");
    EXPECT_STREQ(outcome_.isResults, "11AABBCCDD") << "of a command that the card does not know";
    EXPECT_EQ(call(abecs_cmd_clo, nullptr), ABECS_RSP_STAT_ST_OK);
}

TEST_F(CardSale, EndsAsTheIssuerAndTheLineLetIt) {
    load_tables();
    for (const auto& [status, code, decision, objects] : {std::tuple(0, "51", 2U, "8A0235319F270100"),
                                                          {1, "  ", 1U, "8A025A339F270100"},
                                                          {9, "", 1U, "8A025A339F270100"}}) {
        EXPECT_EQ(get_card(inserted("visa-signature")), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(go_on_chip({}), ABECS_RSP_STAT_ST_OK);
        EXPECT_TRUE(chip_.signature);
        EXPECT_EQ(finish_chip(status, code), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(outcome_.decision, decision) << status;
        EXPECT_STREQ(outcome_.emvData, objects);
        pinPad_.remove();
    }
}

TEST_F(CardSale, LetsTheChipVerifyAPin) {
    load_tables();
    EXPECT_EQ(get_card(inserted("mastercard-chip")), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(go_on_chip(Gestures().type("1111").type("2222").type("1234"), false), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(notes_, (std::vector<std::string>{"ENTER THE PIN", "WRONG PIN", "WRONG PIN, LAST TRY"}));
    EXPECT_EQ(chip_.decision, 0);
    EXPECT_TRUE(chip_.pinOffline && !chip_.pinOnline && !chip_.pinBlocked);
    EXPECT_EQ(chip_.pinOfflineErrors, 2);
    EXPECT_EQ(get_card({}), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(go_on_chip(Gestures().type("1111").type("2222").type("3333")), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(chip_.decision, 1);
    EXPECT_TRUE(chip_.pinBlocked && !chip_.pinOffline);
    EXPECT_EQ(chip_.pinOfflineErrors, 3);
    pinPad_.remove();
    EXPECT_EQ(get_card(inserted("mastercard-chip")), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(go_on_chip({}), ABECS_RSP_STAT_ST_OK) << "without asking";
    EXPECT_TRUE(chip_.pinBlocked);
    EXPECT_EQ(chip_.pinOfflineErrors, 0);
}

TEST_F(CardSale, NeedsTheTables) {
    EXPECT_EQ(get_card({}), ABECS_RSP_STAT_ST_TABERR);
    EXPECT_EQ(get_card(inserted("visa-chip"), ""), ABECS_RSP_STAT_ST_TABERR);
    load_tables();
    EXPECT_EQ(get_card({}, "TABLES0002"), ABECS_RSP_STAT_ST_TABVERDIF);
    EXPECT_EQ(get_card({}), ABECS_RSP_STAT_ST_OK);
}

class ParameterSale : public CardSale {
protected:
    Owned<AbecsCmdGcxBuilder, abecs_cmd_gcx_builder_delete> gcx_{abecs_cmd_gcx_builder_new("261121", "102030")};
    Owned<AbecsCmdGoxBuilder, abecs_cmd_gox_builder_delete> gox_{
        abecs_cmd_gox_builder_new(3, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 0)};
    Owned<AbecsCmdFcxBuilder, abecs_cmd_fcx_builder_delete> fcx_{abecs_cmd_fcx_builder_new("0000")};
};

TEST_F(ParameterSale, TakesAContactlessCard) {
    load_tables();
    EXPECT_NO_RAISE(abecs_cmd_gcx_builder_amount(gcx_, 1234));
    EXPECT_NO_RAISE(abecs_cmd_gcx_builder_aidlist(gcx_, "04010301"));
    begin("GCX", Gestures().tap(card("visa-contactless")), abecs_cmd_gcx, gcx_);
    EXPECT_EQ(finish(abecs_cmd_gcx_response, items_.object), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(item(ABECS_RSP_DATID_PP_CARDTYPE) + item(ABECS_RSP_DATID_PP_AIDTABINFO), "06030101");
    EXPECT_EQ(item(ABECS_RSP_DATID_PP_PAN), "401200******0026");
    begin("GOX", Gestures().type("1234"), abecs_cmd_gox, gox_);
    EXPECT_EQ(finish(abecs_cmd_gox_response, items_.object), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(item(ABECS_RSP_DATID_PP_GOXRES), "200001");
    EXPECT_EQ(tdes_decipher(kPinKeys[0], item(ABECS_RSP_DATID_PP_PINBLK)), kContactlessBlock);
    EXPECT_EQ(item(ABECS_RSP_DATID_PP_KSN), "FFFF9876543210E00001"_hex);
    EXPECT_EQ(call(abecs_cmd_cng, "9F7C020102"), ABECS_RSP_STAT_ST_OK);
    EXPECT_NO_RAISE(abecs_cmd_fcx_builder_arc(fcx_, "00"));
    begin("FCX", {}, abecs_cmd_fcx, fcx_);
    EXPECT_EQ(finish(abecs_cmd_fcx_response, items_.object), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(item(ABECS_RSP_DATID_PP_FCXRES), "000");
    const AbecsTagList tags{{0x9F, 0x7C, 0x9F, 0x02}, 4};
    AbecsEmvData data{};
    EXPECT_EQ(call(abecs_cmd_ged, &tags, &data), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(std::string(data.data, data.data + data.szData), "9F7C020102 9F0206000000001234"_hex);
}

}  // namespace
