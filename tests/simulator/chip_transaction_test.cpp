// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fstream>

#include "tests/simulator/fixture.h"

// PIN blocks are of the openssl program, under the working key 11223344556677889900AABBCCDDEEFF or by DUKPT.
using namespace quorvel::sim;

namespace {

const std::vector<std::string> kPinAsked{"ENTER THE PIN"};
const std::string kWorkingKey = "3EB3B72576BBBE834F0B96AAA5A8B548";
const std::string kAnyAmountOnline = "100000000000000000000";

// The fields of GOC that differ from test to test.
struct Goc {
    std::string declared = "086";
    // Exception list, connect and a reserved digit.
    std::string flags = "010";
    // Method, index and working key.
    std::string key = "300" + std::string(32, '0');
    // On or off, floor limit, target percentage, threshold, maximum percentage.
    std::string risk = "000000000000000000000";
    std::string acquirer = "00";
    std::string tags = "00500195003000";
};

std::string goc(const Goc& goc) {
    return "GOC" + goc.declared + "000000001234" + "000000000100" + goc.flags + goc.key + goc.risk + goc.acquirer
           + goc.tags;
}

// Decision, signature, offline PIN, errors, blocked, online PIN; the terminal verification results, for which goc()
// asks; the PIN block and the serial number.
std::string went(const std::string& flags, const std::string& results, const std::string& pin = std::string(36, '0')) {
    return "GOC000055" + flags + pin + "007" + "9505"_hex + results + "000";
}

class ChipTransactionTest : public PinPadTest {
protected:
    void SetUp() override { play(loaded_device()); }

    // By the request that asks for nothing in particular. What is answered is tested elsewhere.
    void read(const Gestures& gestures) {
        if (!gestures.events().empty()) { pinPad_->when("GCR", gestures); }
        ASSERT_EQ(ask("GCR").substr(0, 6), "GCR000");
    }

    void go_online() {
        read(inserted("declining-chip"));
        call(goc({}), went("200000", "0000000000"_hex));
    }
};

TEST_F(ChipTransactionTest, GocDecides) {
    const std::string none = "0000000000"_hex;
    const std::string floorLimit = "0000008000"_hex;
    for (const auto& [name, request, flags, results] : {
             std::tuple("visa-signature", Goc{}, "010000", none),
             {"visa-signature", {.risk = kAnyAmountOnline}, "210000", floorLimit},
             {"visa-signature", {.risk = "1000004D3000000000000"}, "010000", none},
             {"visa-signature", {.risk = "100001000990000100099"}, "210000", "0000001000"_hex},
             {"visa-signature", {.flags = "110"}, "210000", "1000000000"_hex},
             {"amex-chip", {.declared = "089", .acquirer = "03991"}, "010000", none},
             {"diners-chip", {.declared = "118", .acquirer = "32" + std::string(32, ' ')}, "000000", none},
         }) {
        SCOPED_TRACE(name);
        pinPad_->remove();
        read(inserted(name));
        call(goc(request), went(flags, results));
    }
}

TEST_F(ChipTransactionTest, EndsWhenTheCardLeaves) {
    read(inserted("visa-chip"));
    call_while(Gestures().press(digit('1')).remove(), goc({}), "GOC043", kPinAsked);
    read(inserted("visa-chip"));
    call_while(Gestures().press(digit('1')).insert(card("visa-magnetic")).type("1234"), goc({}), "GOC043", kPinAsked);
    pinPad_->remove();
    read(inserted("visa-chip"));
    pinPad_->act(Gestures().remove().insert(card("visa-chip")));
    call(goc({}), "GOC043");
    pinPad_->remove();
    go_online();
    pinPad_->remove();
    call("FNC0100000000000003000", "FNC043");
}

TEST_F(ChipTransactionTest, GocNeedsTheKeyInOneOfItsForms) {
    for (const std::string key : {"3030303030303030B4CC3FD9D8D95214", "B4CC3FD9D8D952140000000000000000"}) {
        read(key.front() == '3' ? inserted("visa-chip") : Gestures());
        call_while(Gestures().type("1234"), goc({.key = "000" + key}),
                   went("200001", "0000040000"_hex, "E47AA5F63DB0260B" + std::string(20, '0')), kPinAsked);
    }
    read({});
    call_while(Gestures().type("1234"), goc({.key = "100" + kWorkingKey, .tags = "005001950070029F02"}),
               "GOC0000642000016CD68A419A382F82" + std::string(20, '0') + "016"
                   + "95050000040000 9F0206000000001234"_hex + "000",
               kPinAsked);
    read({});
    call_while(Gestures().type("1234"), goc({.key = "009" + kWorkingKey}), "GOC042", kPinAsked);
}

TEST_F(ChipTransactionTest, TheChipVerifiesAPinUntilItHasNoTriesLeft) {
    const std::string failed = "0000A00000"_hex;
    const std::vector<std::string> wrong{"ENTER THE PIN", "WRONG PIN", "WRONG PIN, LAST TRY"};
    read(inserted("mastercard-chip"));
    call_while(Gestures().type("1111").type("2222").type("1234"), goc({}), went("001200", "0000000000"_hex), wrong);
    read({});
    call_while(Gestures().type("1111").type("2222").type("3333"), goc({}), went("100310", failed), wrong);
    pinPad_->remove();
    read(inserted("mastercard-chip"));
    call(goc({}), went("100010", failed));
}

// The issuer answers, or cannot be reached.
TEST_F(ChipTransactionTest, FncEndsAsTheIssuerAndTheLineLetIt) {
    for (const auto& [issuer, due] : {std::pair("0000", "00088A0230309F270140"),
                                      {"0051", "20088A0235319F270100"},
                                      {"10  ", "10088A025A339F270100"},
                                      {"90  ", "10088A025A339F270100"}}) {
        read(inserted("visa-signature"));
        call(goc({.risk = kAnyAmountOnline}), went("210000", "0000008000"_hex));
        call("FNC010"s + issuer + "0000000090038A9F27", "FNC000025"s + due + "00000");
        pinPad_->remove();
    }
}

TEST_F(ChipTransactionTest, TheCommandsOfParametersFinishWhatAnAntennaBegan) {
    pinPad_->when("GCX", Gestures().tap(card("visa-contactless")));
    ASSERT_EQ(ask("GCX036" + "0013 000C"_hex + "000000001234" + "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958")
                  .substr(0, 6),
              "GCX000");
    call_while(Gestures().type("1234"),
               "GOX017" + "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00",
               "GOX000036" + "8056 0006"_hex + "200001" + "8057 0008 74FDF09C431C2DBE"_hex
                   + "804C 000A FFFF9876543210E00001"_hex,
               kPinAsked);
    call("CNG007059F7C020102", "CNG000");
    call("FCX014" + "0019 0004"_hex + "0000" + "001C 0002"_hex + "00", "FCX000007" + "8058 0003"_hex + "000");
    call("GED008" + "0004 0004 9F7C9F02"_hex, "GED000018" + "8054 000E 9F7C020102 9F0206000000001234"_hex);
}

TEST_F(ChipTransactionTest, FncRunsTheIssuersScripts) {
    read(inserted("visa-chip"));
    begin(Gestures().type("1234"), goc({}), "NTM000013ENTER THE PIN");
    ASSERT_EQ(host_->receive(68).substr(0, 10), "\x16GOC000055");
    const std::string good = "71119F18040102030486088418000003112233";
    const std::string unknown = "720786058424000000";
    call("FNC066" "00" "00" "028" + good + unknown + "000" "009003959F5B",
         "FNC0000690020950500000400109F5B0A200102030411000000001020010203041100000000000");
}

TEST_F(ChipTransactionTest, GoxTakesRiskManagementAsParameters) {
    const std::string begin = "0010 0002"_hex + "03" + "0002 0001"_hex;
    const std::string index = "0009 0002"_hex + "00";
    for (const auto& [parameters, due] : {
             std::pair<std::string, std::string>{"0018 0005"_hex + "10000", "210000"},
             {"0018 0005"_hex + "11000", "110000"},
             {"001A 000A 00000000 00 00000000 00 0013 000C"_hex + "000000000001", "210000"},
             {"001A 000A 00000002 00 00000002 00 0013 000C"_hex + "000000000001", "010000"},
             {"001A 000A 00000002 63 00000002 63 0013 000C"_hex + "000000000001", "210000"},
         }) {
        pinPad_->remove();
        read(inserted("visa-signature"));
        const std::string fields = begin + "3" + index + parameters;
        call("GOX0" + std::to_string(fields.size()) + fields, "GOX000010" + "8056 0006"_hex + due);
    }
}

// What the host tells of the money has to stay as it was told first, and be told alike in both places.
TEST_F(ChipTransactionTest, FindsMoneyThatChangesOnItsWay) {
    const auto in = [](const std::string& id, const std::string& parameters) {
        return fmt::format("{}{:03}", id, parameters.size()) + parameters;
    };
    const auto amount = [](const std::string& digits) { return "0013 000C"_hex + digits; };
    const std::string moment = "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958";
    const std::string reais = "0022 0003"_hex + "986";
    const auto gox = [&](const std::string& acquirer, const std::string& more) {
        return in("GOX", "0010 0002"_hex + acquirer + "0002 0001"_hex + "3" + "0009 0002"_hex + "00" + "0018 0005"_hex
                             + "10000" + more);
    };
    const std::string twelve = amount("000000001234");
    const std::tuple<std::string, std::string, std::string> cases[]{
        {twelve + reais, gox("03", twelve + reais), ""},
        {amount("000000000000"), gox("03", twelve), ""},
        {"", gox("03", twelve + reais), ""},
        {twelve, gox("04", ""), "GOX: the acquirer is 04, but the card's application was selected for 03"},
        {twelve, gox("03", amount("000000123400")), "GOX: the amount is 000000123400, but was 000000001234"},
        {twelve, gox("03", amount("000000000000")), "GOX: the amount is 000000000000, but was 000000001234"},
        {reais, gox("03", "0022 0003"_hex + "840"), "GOX: the currency is 840, but was 986"},
        {"0014 000C"_hex + "000000000100", gox("03", "0014 000C"_hex + "000000000200"),
         "GOX: the cashback is 000000000200, but was 000000000100"},
        {twelve, gox("03", twelve + "0005 0009 9F02 06 000000009999"_hex),
         "GOX: the amount is 000000001234, but 000000009999 in SPE_EMVDATA"},
    };
    for (const auto& [told, request, finding] : cases) {
        pinPad_->remove();
        pinPad_->when("GCX", inserted("visa-signature"));
        ASSERT_EQ(ask(in("GCX", moment + told)).substr(0, 6), "GCX000");
        call(request, "GOX000010" + "8056 0006"_hex + "210000");
        if (!finding.empty()) { expect_findings({{Kind::kMoney, finding}}); }
    }
    call("FCX026" + "0019 0004"_hex + "2000" + "0005 000E 9F02 06 000000001235 5F2A 02 0986"_hex,
         "FCX000007" + "8058 0003"_hex + "001");
    expect_findings({{Kind::kMoney, "FCX: the amount is 000000001235, but was 000000001234"}});
    read(Gestures());
    call(goc({}), went("010000", "0000000000"_hex));
}

// The display tells each step in the cardholder's language, and what is over is not gone back to.
TEST_F(ChipTransactionTest, ShowsTheCardholderWhatHappens) {
    struct Case {
        Language language;
        std::string price, ask, pin, wrong, last, blocked, idle;
    };
    for (const auto& [language, price, ask, pin, wrong, last, blocked, idle] :
         {Case{Language::kEnglish, "R$ 12.34\r", "INSERT, SWIPE OR TAP THE CARD", "ENTER THE PIN", "WRONG PIN\r",
               "LAST TRY", "PIN BLOCKED", "WELCOME"},
          {Language::kPortuguese, "R$ 12,34\r", "INSIRA, PASSE OU\rAPROXIME CART\xC3O", "DIGITE A SENHA",
           "SENHA INCORRETA\r", "\xDALTIMA TENTATIVA", "SENHA BLOQUEADA", "BEM-VINDO"}}) {
        play({.device = loaded_device(), .language = language});
        const auto shows = [&](const std::string& text) { EXPECT_EQ(pinPad_->screen().text, text); };
        const auto sync = [&] {
            pinPad_->act(Gestures().notify("."));
            expect(frame("NTM000001."));
        };
        shows(idle);
        begin(Gestures().notify("."), "GCR0400099000000001234240229235958          00", "NTM000001.");
        shows(price + ask);
        pinPad_->act(inserted("mastercard-chip"));
        EXPECT_EQ(host_->receive(355).substr(1, 6), "GCR000");
        shows(text_of(Text::kProcessing, language));
        exchange(frame(goc({})), kAck + frame("NTM000013ENTER THE PIN"));
        shows(price + pin);
        for (const auto& [notice, prompt] :
             {std::pair("NTM000009WRONG PIN", wrong + pin), {"NTM000019WRONG PIN, LAST TRY", wrong + last}}) {
            pinPad_->type_pin("1111");
            expect(frame(notice));
            sync();
            shows(price + prompt);
        }
        pinPad_->type_pin("1111");
        expect(frame(went("100310", "0000A00000"_hex)));
        shows(blocked);
        // By the end of what comes next.
        call_while(Gestures().press(Key::kEnter), "GKY", "GKY000");
        shows(idle);
    }
}

TEST_F(ChipTransactionTest, ShowsTheHostsTextsInPlaceOfItsOwn) {
    const auto says = [](const std::string& text) { return "001B 0005"_hex + text; };
    const std::string moment =
        "0013 000C"_hex + "000000001234" + "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958";
    begin(Gestures().notify("."), "GCX045" + moment + says("CARD?"), "NTM000001.");
    EXPECT_EQ(pinPad_->screen().text, "CARD?");
    exchange(kCan, kEot);
    read(inserted("mastercard-chip"));
    const std::string gox =
        "GOX026" + "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00" + says("CODE?");
    exchange(frame(gox), kAck + frame("NTM000013ENTER THE PIN"));
    EXPECT_EQ(pinPad_->screen().text, "CODE?");
    pinPad_->act(Gestures().type("1111").notify("."));
    expect(frame("NTM000009WRONG PIN") + frame("NTM000001."));
    EXPECT_EQ(pinPad_->screen().text, "WRONG PIN\rCODE?");
    pinPad_->press(Key::kCancel);
    expect(frame("GOX013"));
    EXPECT_EQ(pinPad_->screen().text, "CANCELLED");
}

TEST(Texts, StandInTheGuideInBothLanguages) {
    std::ifstream file(QUORVEL_DOCS "/virtual-pin-pad.md");
    const std::string guide(std::istreambuf_iterator<char>(file), {});
    for (const auto& [text, english, portuguese] : kTexts) {
        for (std::string due : {std::string(english), std::string(portuguese)}) {
            std::ranges::replace(due, '\r', ' ');
            EXPECT_NE(guide.find(due), std::string::npos) << due;
        }
    }
}

TEST(Texts, ShowAnAmountAsItsCurrencyHasIt) {
    for (const auto& [amount, currency, english, portuguese] : {
             std::tuple(5U, 986U, "R$ 0.05", "R$ 0,05"),
             {123456U, 0U, "R$ 1234.56", "R$ 1234,56"},
             {1200U, 840U, "USD 12.00", "USD 12,00"},
             {1200U, 600U, "PYG 1200", "PYG 1200"},
             {1200U, 788U, "TND 1.200", "TND 1,200"},
             {1200U, 36U, "036 12.00", "036 12,00"},
         }) {
        EXPECT_EQ(amount_text(amount, currency, Language::kEnglish), english);
        EXPECT_EQ(amount_text(amount, currency, Language::kPortuguese), portuguese);
    }
}

TEST_F(ChipTransactionTest, EachStepNeedsTheOneBefore) {
    const std::string gox = "GOX017" + "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00";
    const std::string fnc = "FNC0100000000000003000";
    const std::string fcx = "FCX008" + "0019 0004"_hex + "2000";
    const std::string ged = "GED005" + "0004 0001 82"_hex;
    read(Gestures().swipe(card("visa-magnetic")));
    refuse("010", Kind::kSequence,
           {{goc({}), "GOC without a chip that was read"},
            {gox, "GOX without a chip that was read"},
            {fnc, "FNC without a chip that was read"},
            {fcx, "FCX without a chip that was read"},
            {ged, "GED without a chip that was read"},
            {"CNG00503820138", "CNG without a chip that was read"}});
    read(inserted("visa-signature"));
    refuse("010", Kind::kSequence, {{fnc, "FNC at the wrong stage of the transaction"}});
    call(goc({}), went("010000", "0000000000"_hex));
    refuse("010", Kind::kSequence,
           {{fcx, "FCX at the wrong stage of the transaction"}, {gox, "GOX at the wrong stage of the transaction"}});
    pinPad_->remove();
    go_online();
    refuse("010", Kind::kSequence, {{goc({}), "GOC at the wrong stage of the transaction"}});
    call(fnc, "FNC000009100000000");
    refuse("010", Kind::kSequence, {{fnc, "FNC at the wrong stage of the transaction"}});
}

TEST_F(ChipTransactionTest, RefusesRequestsThatBreakTheirLayout) {
    read(inserted("visa-signature"));
    refuse("011", Kind::kLayout,
           {{goc({.declared = "085"}), "GOC: CMD_LEN1: 85 instead of 86"},
            {goc({.flags = "210"}), "GOC: GOC_EXCLIST: 2 is not from 0 to 1"},
            {goc({.flags = "011"}), "GOC: GOC_RESERVED: 1 instead of 0"},
            {goc({.declared = "089", .acquirer = "03001"}), "GOC: GOC_ACQPRLEN: 3 instead of 0"},
            {goc({.tags = "00500195003000000"}), "GOC: 3 bytes too many"}});
    const std::string gox = "0010 0002"_hex + "03" + "0009 0002"_hex + "00" + "0002 0001"_hex;
    refuse("019", Kind::kLayout,
           {{"GOX017" + gox + "0", "GOX: no SPE_WKENC"}, {"FCX008" + "0019 0004"_hex + "1000", "FCX: no SPE_ARC"}});
    refuse("011", Kind::kLayout,
           {{"GOX017" + gox + "4", "SPE_MTHDPIN: method: 4 is not from 0 to 3"},
            {"GOX029" + gox + "1" + "000A 0008 0011223344556677"_hex, "SPE_WKENC: 8 bytes instead of 16"},
            {"GOX029" + gox + "2" + "000A 0008 0011223344556677"_hex, "GOX: SPE_WKENC 0x000A has no place in it"},
            {"GOX031" + gox + "3" + "001A 000A 00000000 64 00000000 00"_hex,
             "SPE_TRMPAR: target percentage: 100 is not from 0 to 99"},
            {"FNC0102000000000003000", "FNC: FNC_COMMST: no such status"},
            {"FNC01000  000000003000", "FNC_ARC: not of letters and digits"},
            {"FNC014000000271FF000003000", "tags: a length of too many bytes"},
            {"FNC0100000000001003000", "FNC: FNC_ACQPRLEN: 1 instead of 0"},
            {"FCX014" + "0019 0004"_hex + "2000" + "001C 0002"_hex + "00", "FCX: SPE_ARC 0x001C has no place in it"},
            {"FCX014" + "0019 0004"_hex + "0000" + "001C 0002"_hex + "0-", "SPE_ARC: not of letters and digits"},
            {"CNG00603820138", "CNG: CMD_LEN1: 6 instead of 5"},
            {"CNG005038201380", "CNG: 1 bytes too many"},
            {"CNG00503820238", "tags: 82: 2 bytes due, 1 left"}});
}

// The selection at random, the chip's numbers, and a session under a key that nobody needs to open.
TEST_F(ChipTransactionTest, DrawsTheSameAgainWithTheSameSeed) {
    const auto drawn = [this](uint32_t seed) {
        play({.device = loaded_device(), .seed = seed});
        std::string all;
        for (int i = 0; i < 8; ++i) {
            read(i == 0 ? inserted("visa-signature") : Gestures());
            all += ask(goc({.risk = "100001000500000100050", .tags = "005001950110049F379F26"}));
        }
        return all + ask(kOpenSession);
    };
    const std::string first = drawn(3);
    EXPECT_NE(first.find("95050000001000"_hex), std::string::npos);
    EXPECT_NE(first.find("95050000000000"_hex), std::string::npos);
    EXPECT_EQ(drawn(3), first);
    EXPECT_NE(drawn(4), first);
}

}  // namespace
