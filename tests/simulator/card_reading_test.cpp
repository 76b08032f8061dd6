// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/fixture.h"
#include "wire/hex.h"

using namespace quorvel::sim;

namespace {

// Acquirer, application type, amount, date and time; behind it come version and records.
std::string gcr(const std::string& acquirerAndType) {
    return "GCR040" + acquirerAndType + "000000001234240229235958          00";
}

const std::string kDateAndTime = "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958";

std::string gcx(const std::string& parameters) {
    return "GCX" + std::to_string(1020 + parameters.size()).substr(1) + kDateAndTime + parameters;
}

using CardReadingTest = PinPadTest;

TEST_F(CardReadingTest, GcrTellsOfAStripe) {
    play();
    call_while(Gestures().swipe(card("mastercard-magnetic")), gcr("0099"),
               "GCR00034200000000060" + padded("B5555555555554444^CARDHOLDER/MASTERCARD^30121010000000000000", 76)
                   + "34" + padded("5555555555554444=30121010000000000", 37) + "036"
                   + padded("015555555555554444=00000000000000000", 104) + "16" + padded("5555555555554444", 19) + "00"
                   + padded("", 16) + "101" + padded("CARDHOLDER/MASTERCARD", 26) + "301231" + padded("", 29)
                   + "840000");
    const auto named = [](const std::string& version) { return "GCR0400099000000001234240229235958" + version + "00"; };
    call(named("TABLES0001"), "GCR021");
    call_while(inserted("visa-chip"), gcr("0099"), "GCR021");
    play(loaded_device());
    call(named("TABLES0002"), "GCR020");
    call_while(Gestures().press(Key::kCancel), named("TABLES0001"), "GCR013");
}

// Those of the first two acquirers have data of their own behind what all have.
TEST_F(CardReadingTest, GcrTellsOfTheAcquirersOwnData) {
    play(loaded_device());
    for (const auto& [name, request, head, tail] : {
             std::tuple("amex-chip", "0100", "030010101",
                        "84006612"
                        "30303030303030303030A00000002501"
                            + padded("AMERICAN EXPRESS", 32)),
             {"diners-chip", "0201", "030010201", "076010A000000152"s},
         }) {
        pinPad_->when("GCR", inserted(name));
        const std::string answer = ask(gcr(request));
        EXPECT_EQ(answer.substr(9, 9), head);
        EXPECT_EQ(answer.substr(9 + 336), tail);
        pinPad_->remove();
    }
}

TEST_F(CardReadingTest, GcxMasksAndTellsWhatItIsAskedFor) {
    play(loaded_device());
    const std::string parameters = "0023 0004"_hex + "0000" + "0004 0006 9F02 9A 9F21 82 0005 0004 82 02 FFFF"_hex
                                   + "0013 000C"_hex + "000000001234" + "0014 000C"_hex + "000000000000"
                                   + "0021 0001 00 0022 0003"_hex + "986";
    call_while(Gestures().tap(card("mastercard-contactless")), gcx(parameters),
               "GCX000150" + "804F 0002"_hex + "05" + "8050 0001"_hex + "0" + "8052 0010"_hex + "****************"
                   + "8042 0022"_hex + "****************=30122010000000000" + "805D 0006"_hex + "301231"
                   + "8051 0006"_hex + "030201" + "805B 000A"_hex + "MASTERCARD" + "8053 0002"_hex + "00"
                   + "805C 0003"_hex + "076" + "8060 0002"_hex + "00"
                   + "8054 0018 9F0206000000001234 9A03240229 9F2103235958 8202FFFF"_hex);
}

// A moment that cannot be meant is found and answered like any other.
TEST_F(CardReadingTest, FindsMomentsThatCannotBe) {
    const auto at = [](const std::string& date, const std::string& time) {
        return "GCX020" + "0015 0006"_hex + date + "0016 0006"_hex + time;
    };
    play(PinPad::Options{.clock = [] { return std::chrono::sys_days(std::chrono::year(2024) / 2 / 29); }});
    const std::string far = ", more than a year from the PIN pad's own, 240229";
    for (const auto& [request, finding] : {
             std::pair(at("230228", "000000"), ""s),
             {at("000000", "120000"), "GCX: the date is 000000, which is none"},
             {at("241301", "120000"), "GCX: the date is 241301, which is none"},
             {at("240231", "235959"), "GCX: the date is 240231, which is none"},
             {at("230227", "120000"), "GCX: the date is 230227" + far},
             {at("250302", "120000"), "GCX: the date is 250302" + far},
             {at("240229", "240000"), "GCX: the time is 240000, which is none"},
             {at("240229", "236000"), "GCX: the time is 236000, which is none"},
             {"GCR0400099000000001234230229235958          00", "GCR: the date is 230229, which is none"},
         }) {
        call_while(Gestures().press(Key::kCancel), request, request.substr(0, 3) + "013");
        if (!finding.empty()) { expect_findings({{Kind::kMoney, finding}}); }
    }
}

const std::string kDebitOnly = "0011 0004"_hex + "0203";
const std::string kDebitAnswer = "GCX000135" + "804F 0002"_hex + "03" + "8050 0001"_hex + "0" + "8052 0010"_hex
                                 + "400000******0002" + "8042 0022"_hex + "400000******0002=30122010000000000"
                                 + "8055 0013"_hex + "CARDHOLDER/MULTIPLE" + "805D 0006"_hex + "301231"
                                 + "8051 0006"_hex + "030302" + "805B 0006"_hex + "DEBITO" + "8053 0002"_hex + "00"
                                 + "805C 0003"_hex + "076";

TEST_F(CardReadingTest, OfSeveralApplicationsTheHostOrTheCardholderChooses) {
    play(loaded_device());
    const std::vector<std::string> asked{"CHOOSE THE APPLICATION"};
    call_while(inserted("visa-multiple").choose(2), gcx(""), kDebitAnswer, asked);
    call(gcx(kDebitOnly), kDebitAnswer);
    call(gcx("0012 0008"_hex + "01010303"), kDebitAnswer);
    call_while(Gestures().press(Key::kCancel), gcx(""), "GCX013", asked);
    begin(Gestures().notify("SHOWN"), gcx(""), "NTM000022CHOOSE THE APPLICATION");
    expect(frame("NTM000005SHOWN"));
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "CHOOSE", .menu = {"CREDITO", "DEBITO"}, .selected = 1}));
    pinPad_->remove();
    expect(frame("GCX043"));
}

Card faulty(Status chip, Status contactless) {
    Card faulty = card("elo-contactless");
    faulty.chip->fault = chip;
    faulty.contactless->fault = contactless;
    return faulty;
}

TEST_F(CardReadingTest, RefusesWhatCannotBeUsed) {
    play(loaded_device());
    const Card blocked = faulty(Status::kCardblocked, Status::kCtlsifchg);
    for (const auto& [gestures, parameters, response] : {
             std::tuple(Gestures().press(Key::kF1).press(Key::kCancel), ""s, "GCX013"),
             {Gestures(), "000C 0001 01"_hex, "GCX012"},
             {inserted("mute-chip"), "", "GCX060"},
             {Gestures().insert({.pan = "4111111111111111"}), "", "GCX060"},
             {Gestures().insert(blocked), "", "GCX079"},
             {Gestures().tap(blocked), "", "GCX087"},
             {Gestures().swipe({.pan = "4111111111111111"}), "", "GCX041"},
             {inserted("visa-chip"), kDebitOnly, "GCX070"},
             {Gestures().tap(card("visa-contactless")), kDebitOnly, "GCX084"},
             {inserted("visa-chip"), "0010 0002"_hex + "04", "GCX070"},
             {inserted("visa-chip"), "0012 0008"_hex + "03020401", "GCX070"},
             {Gestures().tap(card("visa-contactless")).press(Key::kCancel), "0017 0005"_hex + "01111", "GCX013"},
             {Gestures().tap(card("visa-chip")).press(Key::kCancel), "", "GCX013"},
         }) {
        call_while(gestures, gcx(parameters), response);
        pinPad_->remove();
    }
    EXPECT_FALSE(retire().transaction);
}

// The chip that was tried last decides whether a stripe may stand in for it, and the answer says why it does.
TEST_F(CardReadingTest, TakesTheStripeOfAChipCardOnlyAfterItsChip) {
    play(loaded_device());
    const Card visa = card("visa-chip");
    const auto swiped = [](const std::string& chip) {
        return "GCX000156" + "804F 0002"_hex + "00" + "8050 0001"_hex + chip + "8052 0010"_hex + "411111******1111"
               + "8041 0036"_hex + "B411111******1111^CARDHOLDER/VISA^30122010000000000000" + "8042 0022"_hex
               + "411111******1111=30122010000000000" + "8055 000F"_hex + "CARDHOLDER/VISA" + "805D 0006"_hex
               + "301231";
    };
    const std::vector<std::string> told{"INSERT THE CHIP"};
    call_while(Gestures().swipe(visa).press(Key::kCancel), gcx(""), "GCX013", told);
    call_while(inserted("mute-chip"), gcx(""), "GCX060");
    pinPad_->remove();
    call_while(Gestures().swipe(visa), gcx(""), swiped("1"));
    call_while(inserted("visa-chip"), gcx(kDebitOnly), "GCX070");
    pinPad_->remove();
    call_while(Gestures().swipe(visa), gcx(""), swiped("2"));
    call_while(Gestures().swipe(visa).press(Key::kCancel), gcx(""), "GCX013", told);
}

TEST_F(CardReadingTest, RefusesRequestsThatBreakTheirLayout) {
    play(loaded_device());
    const std::string when = "000000001234240229235958          ";
    refuse("011", Kind::kLayout,
           {{"GCR0400099" + when + "002", "GCR: GCR_CTLSON: 2 is not from 0 to 1"},
            {"GCR0410099" + when + "000", "GCR: 1 bytes too many"},
            {"GCR0440001" + when + "010101", "GCR: GCR_AIDLIST: beside an application type"},
            {"GCR0400099000000001234241329235958          00", "GCR: GCR_DATE: 13 is not from 1 to 12"},
            {gcx("0011 0002"_hex + "99"), "SPE_APPTYPE: type: 99 is not from 1 to 98"},
            {gcx("0011 0016"_hex + "0101010101010101010101"), "SPE_APPTYPE: 2 bytes too many"},
            {gcx("0012 0004"_hex + "AB01"), "SPE_AIDLIST: acquirer: 0x41 is no digit"},
            {gcx("0013 000C"_hex + "000000001234" + "0013 000C"_hex + "000000001234"),
             "GCX: SPE_AMOUNT 0x0013 has no place in it"},
            {gcx("001B 0081"_hex + std::string(129, 'M')), "SPE_DSPMSG: 129 bytes, at most 128"}});
    refuse("019", Kind::kLayout, {{"GCX010" + kDateAndTime.substr(0, 10), "GCX: no SPE_TRNTIME"}});
}

}  // namespace
