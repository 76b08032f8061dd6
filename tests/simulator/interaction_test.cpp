// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/pan_mask.h"
#include "tests/simulator/command_fixture.h"
#include "wire/hex.h"

using namespace std::string_literals;
using namespace support::literals;

namespace quorvel::sim {

namespace {

std::string padded(std::string text, size_t width) {
    text.resize(width, ' ');
    return text;
}

const Card card{.pan = "378282246310005",
                .track1 = "B3782 822463 10005^DOE/JOHN^3012",
                .track2 = "378282246310005=3012101",
                .track3 = "01378282246310005=1"};

class InteractionTest : public CommandTest {
protected:
    void call_while(const Gestures& gestures, const std::string& request, const std::string& response) {
        pinPad_->when(request.substr(0, 3), gestures);
        call(request, response);
    }
};

TEST_F(InteractionTest, ShowsMessages) {
    play();
    call("DEX163160" + padded("A\r\xC9", 160), "DEX000");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "A\r\xC9"}));
    call("DEX003000", "DEX000");
    EXPECT_EQ(pinPad_->screen(), Screen::Content{});
    expect_findings({});
    refuse("DSP011", Kind::layout,
           {{"DSP031" + padded("", 31), "DSP: DSP_MSG: 32 bytes due, 31 left"},
            {"DSP032\r" + padded("", 31), "DSP: DSP_MSG: 0x0D is not allowed"}});
    refuse("DEX011", Kind::layout,
           {{"DEX164161" + padded("", 161), "DEX: DEX_MSGLEN: 161 is not from 0 to 160"},
            {"DEX006002ABC", "DEX: 1 bytes too many"}});
}

TEST_F(InteractionTest, OffersAMenu) {
    std::string options;
    for (const char* name : {"TEA", "COFFEE", "WATER"}) options += "0020 0018"_hex + padded(name, 24);
    const std::string mnu = "MNU221" + "000C 0001 3C 001B 0080"_hex + padded("CHOOSE\rONE", 128) + options;
    const auto chosen = [](const std::string& option) { return "MNU000006" + "804D 0002"_hex + option; };
    play();
    call_while(Gestures().choose(9), mnu, chosen("03"));
    call_while(Gestures().press(Key::down).press(Key::up).press(Key::up).press(Key::enter), mnu, chosen("01"));
    call_while(Gestures().press(digit('0')).press(digit('4')).press(digit('3')), mnu, chosen("03"));
    call_while(Gestures().press(Key::f1).press(Key::cancel), mnu, "MNU013");
    pinPad_->when("MNU", Gestures().press(Key::down).notify("MOVED"));
    exchange(support::frame(mnu), ack + support::frame("NTM000005MOVED"));
    EXPECT_EQ(pinPad_->screen(),
              (Screen::Content{.text = "CHOOSE\rONE", .menu = {"TEA", "COFFEE", "WATER"}, .selected = 2}));
    exchange(can, eot);
    EXPECT_EQ(pinPad_->screen(), Screen::Content{});
    expect_findings({});
    std::string tooMany = "MNU588";
    for (int i = 0; i < 21; ++i) tooMany += "0020 0018"_hex + padded("", 24);
    refuse("MNU011", Kind::layout,
           {{"MNU032" + options.substr(0, 28) + "000C 0001"_hex, "MNU: parameter 0x000C: 1 bytes due, 0 left"},
            {"MNU038" + "000C 0001 01 000C 0001 01"_hex + options.substr(0, 28),
             "MNU: SPE_TIMEOUT 0x000C has no place in it"},
            {"MNU033" + "001B 0001"_hex + "A" + options.substr(0, 28), "SPE_DSPMSG: text: 128 bytes due, 1 left"},
            {tooMany, "MNU: SPE_MNUOPT 0x0020 has no place in it"}});
    refuse("MNU019", Kind::layout, {{"MNU005" + "000C 0001 01"_hex, "MNU: no SPE_MNUOPT"}});
}

TEST_F(InteractionTest, AsksForANumber) {
    const std::string gcd = "GCD021" + "000B 0002 0007 000D 0001 02 000E 0001 03 000C 0001 3C"_hex;
    play();
    call_while(Gestures().type("1").type("2"), gcd, "GCD000006" + "804D 0002"_hex + "12");
    call_while(Gestures().type("98765"), gcd, "GCD000007" + "804D 0003"_hex + "987");
    call_while(Gestures().press(digit('9')).press(Key::clear).type("12"), gcd, "GCD000006" + "804D 0002"_hex + "12");
    call_while(Gestures().press(Key::cancel), gcd, "GCD013");
    pinPad_->when("GCD", Gestures().press(digit('1')).notify("TYPED"));
    exchange(support::frame(gcd), ack + support::frame("NTM000005TYPED"));
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "NUMBER 0007", .typed = "1"}));
    exchange(can, eot);
    call_while(Gestures().press(Key::enter), "GCD016" + "000B 0002 0007 000D 0001 00 000E 0001 00"_hex,
               "GCD000004" + "804D 0000"_hex);
    expect_findings({});
    refuse("GCD011", Kind::layout,
           {{"GCD016" + "000B 0002 0007 000D 0001 21 000E 0001 21"_hex, "SPE_MINDIG: digits: 33 is not from 0 to 32"},
            {"GCD016" + "000B 0002 0007 000D 0001 05 000E 0001 04"_hex, "SPE_MAXDIG: digits: 4 is not from 5 to 32"}});
    refuse("GCD019", Kind::layout, {{"GCD011" + "000B 0002 0007 000D 0001 00"_hex, "GCD: no SPE_MAXDIG"}});
}

struct Happening {
    std::string options;
    Gestures gestures;
    std::string answer;
};

TEST_F(InteractionTest, TellsCexWhatHappened) {
    const std::string track1 = "B37** ****** **005^DOE/JOHN^3012";
    const std::vector<Happening> cases{
        {"100000", Gestures().swipe(card).press(digit('1')).press(Key::down), "006" + "8040 0002"_hex + "03"},
        {"010000", Gestures().press(Key::enter).tap(card).swipe({.pan = "1", .track2 = "1=2"}),
         "013" + "8040 0002"_hex + "90" + "8042 0003"_hex + "1=2"},
        {"110100", Gestures().swipe(card),
         "092" + "8040 0002"_hex + "90" + "8041 0020"_hex + track1 + "8042 0017"_hex + "37**********005=3012101"
             + "8043 0013"_hex + "0137**********005=1"},
        {"002000", Gestures().remove().insert(card), "006" + "8040 0002"_hex + "92"},
        // It is in the reader already.
        {"112100", {}, "006" + "8040 0002"_hex + "92"},
        {"001000", Gestures().swipe(card).insert(card).remove(), "006" + "8040 0002"_hex + "91"},
        {"000100", Gestures().swipe(card).tap(card), "006" + "8040 0002"_hex + "94"},
    };
    play();
    for (const auto& [options, gestures, answer] : cases) {
        if (!gestures.events().empty()) pinPad_->when("CEX", gestures);
        call("CEX018" + "0006 0006"_hex + options + "0023 0004"_hex + "0203", "CEX000" + answer);
    }
    EXPECT_EQ(pinPad_->findings(), std::vector<Finding>{});
    refuse("CEX011", Kind::layout,
           {{"CEX010" + "0006 0006"_hex + "200000", "SPE_CEXOPT: keys: 2 is not from 0 to 1"},
            {"CEX010" + "0006 0006"_hex + "003000", "SPE_CEXOPT: chip: 3 is not from 0 to 2"},
            {"CEX010" + "0006 0006"_hex + "100001", "SPE_CEXOPT: reserved: 1 instead of 0"},
            {"CEX011" + "0006 0007"_hex + "1000000", "SPE_CEXOPT: 1 bytes too many"}});
    EXPECT_EQ(retire().lastCard->pan, card.pan);
}

TEST(PanMask, KeepsTheEndsOfACardNumberOnly) {
    EXPECT_EQ(masked("B4111111111111111^DOE/1^2", 16, {}), "B411111******1111^DOE/1^2");
    EXPECT_EQ(masked("4111111111111111", 16, {0, 0}), "****************");
    EXPECT_EQ(masked("4111111111111111=1", 16, {12, 12}), "4111111111111111=1");
    EXPECT_EQ(masked("4111=1", 16, {6, 4}), "4111=1");
    EXPECT_EQ(masked("", 16, {}), "");
}

TEST_F(InteractionTest, TellsCkeWhatHappened) {
    play();
    call_while(Gestures().press(digit('1')).press(Key::clear), "CKE003100", "CKE000003008");
    call_while(Gestures().insert(card), "CKE0040020", "CKE00000221");
    call("CKE003002", "CKE00000221");
    call_while(Gestures().remove(), "CKE003001", "CKE00000220");
    call_while(Gestures().swipe(card).tap(card), "CKE0040001", "CKE00000231");
    expect_findings({});
    refuse("CKE011", Kind::layout,
           {{"CKE003200", "CKE: CKE_KEY: 2 is not from 0 to 1"},
            {"CKE003003", "CKE: CKE_ICC: 3 is not from 0 to 2"},
            {"CKE0040002", "CKE: CKE_CTLS: 2 is not from 0 to 1"},
            {"CKE0050000", "CKE: CMD_LEN1: 5 bytes due, 4 left"},
            {"CKE00500000", "CKE: 1 bytes too many"}});
}

// The card number's last 16 digits, blanks as E and filled up with F, enciphered with the openssl program.
TEST_F(InteractionTest, TellsCkeTracksUnderThePanKey) {
    Device device;
    device.panKey = from_hex("11223344556677889900AABBCCDDEEFF");
    play({.device = device});
    const std::string track2 = "6118E09677FA9702=3012101";
    call_while(
        Gestures().swipe({.pan = card.pan, .track1 = card.track1, .track2 = card.track2}), "CKE003010",
        "CKE000225132" + padded("B3170C73962C42EDC3^DOE/JOHN^3012", 76) + "24" + padded(track2, 40) + padded("", 104));
    expect_findings({});
}

const std::string noKey(32, '0');

std::string gpn(const std::string& head, const std::string& key, const std::string& pan,
                const std::vector<std::string>& prompts) {
    std::string body = head + key + pan + std::to_string(prompts.size());
    for (const std::string& prompt : prompts) body += padded(prompt, 36);
    return "GPN" + std::string(3 - std::to_string(body.size()).size(), '0') + std::to_string(body.size()) + body;
}

TEST_F(InteractionTest, AsksForAPinAsOftenAsItIsTold) {
    const std::string blank = "30303030303030303030303030303030";
    const std::string pan = "134012345678909      ";
    play();
    // Twice the same PIN: whoever differs begins anew.
    call_while(Gestures().type("1234").type("1235").type("1234").type("1234"),
               gpn("200", blank, pan, {"0412PIN", "0412AGAIN"}), "GPN000036AE03BBC9A095DEFEFFFF9876543210E00001");
    call_while(Gestures().press(digit('1')).press(Key::cancel), gpn("300", blank, pan, {"0412PIN"}), "GPN013");
    call_while(Gestures().type("1234"), gpn("399", blank, pan, {"0412PIN"}), "GPN042");
    call(gpn("300", blank, pan, {"0412PIN", "1399AGAIN"}), "GPN011");
    pinPad_->when("GPN", Gestures().type("12345").press(digit('1')).notify("TYPED"));
    exchange(support::frame(gpn("300", blank, "00" + padded("", 19), {"0412PIN", "0412AGAIN"})),
             ack + support::frame("NTM000005TYPED"));
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "AGAIN", .typed = "*"}));
    exchange(can, eot);
    expect_findings({});
    for (const Traffic& traffic : pinPad_->traffic()) EXPECT_EQ(to_text(traffic).find("1234"), std::string::npos);
    refuse("GPN011", Kind::layout,
           {{gpn("400", blank, pan, {"0412PIN"}), "GPN: GPN_METHOD: 4 is not from 0 to 3"},
            {gpn("200", noKey, pan, {"0412PIN"}), "GPN: GPN_WKENC: longer than method 2 has it"},
            {gpn("000", "B4CC3FD9D8D95214B4CC3FD9D8D95214", pan, {"0412PIN"}),
             "GPN: GPN_WKENC: longer than method 0 has it"},
            {gpn("300", blank, "14" + pan.substr(2), {"0412PIN"}), "GPN: GPN_PANLEN: 14 for 13 characters"},
            {gpn("300", blank, "01" + padded("4", 19), {"0412PIN"}), "GPN: GPN_PAN: no card number"},
            {gpn("300", blank, "02" + padded("4A", 19), {"0412PIN"}), "GPN: GPN_PAN: no card number"},
            {gpn("300", blank, pan, {}), "GPN: GPN_ENTRIES: 0 is not from 1 to 9"},
            {gpn("300", blank, pan, {"0312PIN"}), "GPN: GPN_MIN: 3 is not from 4 to 99"},
            {gpn("300", blank, pan, {"0807PIN"}), "GPN: GPN_MAX: 7 is not from 8 to 99"}});
}

}  // namespace

}  // namespace quorvel::sim
