// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/pan_mask.h"
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

const Card kAmex{.pan = "378282246310005",
                 .track1 = "B3782 822463 10005^DOE/JOHN^3012",
                 .track2 = "378282246310005=3012101",
                 .track3 = "01378282246310005=1"};

using InteractionTest = PinPadTest;

TEST_F(InteractionTest, ShowsMessages) {
    play();
    call("DEX163160" + padded("A\r\xC9", 160), "DEX000");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "A\r\xC9"}));
    const std::string accents = padded("\xC9 \xE7\xE3\xFF\xA0", 32);
    for (const std::string id : {"DSP", "RMC", "CLO"}) {
        call(id + "032" + accents, id + "000");
        EXPECT_EQ(pinPad_->screen().text, accents.substr(0, 6)) << id;
        refuse("011", Kind::kLayout, {{id + "032\x1F" + padded("", 31), id + ": " + id + "_MSG: 0x1F is not allowed"}});
    }
    call("DEX003000", "DEX000");
    EXPECT_EQ(pinPad_->screen(), Screen::Content{});
    refuse("011", Kind::kLayout,
           {{"DSP032\r" + padded("", 31), "DSP: DSP_MSG: 0x0D is not allowed"},
            {"DEX164161" + padded("", 161), "DEX: DEX_MSGLEN: 161 is not from 0 to 160"},
            {"DEX006002ABC", "DEX: 1 bytes too many"}});
}

TEST_F(InteractionTest, OffersAMenu) {
    const std::string tea = "0020 0018"_hex + padded("TEA", 24);
    const std::string mnu = "MNU221" + "000C 0001 3C 001B 0080"_hex + padded("CHOOSE\rONE", 128) + tea + "0020 0018"_hex
                            + padded("COFFEE", 24) + "0020 0018"_hex + padded("WATER", 24);
    const auto chosen = [](const std::string& option) { return "MNU000006" + "804D 0002"_hex + option; };
    play();
    call("DSP032" + padded("IDLE", 32), "DSP000");
    call_while(Gestures().choose(9), mnu, chosen("03"));
    call_while(Gestures().press(Key::kDown).press(Key::kUp).press(Key::kUp).press(Key::kEnter), mnu, chosen("01"));
    call_while(Gestures().press(digit('0')).press(digit('4')).press(digit('3')), mnu, chosen("03"));
    call_while(Gestures().press(Key::kF1).press(Key::kCancel), mnu, "MNU013");
    begin(Gestures().press(Key::kDown).notify("MOVED"), mnu, "NTM000005MOVED");
    EXPECT_EQ(pinPad_->screen(),
              (Screen::Content{.text = "CHOOSE\rONE", .menu = {"TEA", "COFFEE", "WATER"}, .selected = 2}));
    exchange(kCan, kEot);
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "IDLE"})) << "what was shown before";
    std::string tooMany = "MNU588";
    for (int i = 0; i < 21; ++i) { tooMany += tea; }
    refuse("011", Kind::kLayout,
           {{"MNU038" + "000C 0001 01 000C 0001 01"_hex + tea, "MNU: SPE_TIMEOUT 0x000C has no place in it"},
            {tooMany, "MNU: SPE_MNUOPT 0x0020 has no place in it"}});
}

TEST_F(InteractionTest, AsksForANumber) {
    const std::string gcd = "GCD021" + "000B 0002 0007 000D 0001 02 000E 0001 03 000C 0001 3C"_hex;
    play();
    call_while(Gestures().type("1").type("2"), gcd, "GCD000006" + "804D 0002"_hex + "12");
    call_while(Gestures().type("98765"), gcd, "GCD000007" + "804D 0003"_hex + "987");
    call_while(Gestures().press(digit('9')).press(Key::kClear).type("12"), gcd, "GCD000006" + "804D 0002"_hex + "12");
    call_while(Gestures().press(Key::kCancel), gcd, "GCD013");
    begin(Gestures().press(digit('1')).notify("TYPED"), gcd, "NTM000005TYPED");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "NUMBER 0007", .typed = "1"}));
    exchange(kCan, kEot);
    call_while(Gestures().press(Key::kEnter), "GCD016" + "000B 0002 0007 000D 0001 00 000E 0001 00"_hex,
               "GCD000004" + "804D 0000"_hex);
    refuse("011", Kind::kLayout,
           {{"GCD016" + "000B 0002 0007 000D 0001 21 000E 0001 21"_hex, "SPE_MINDIG: digits: 33 is not from 0 to 32"},
            {"GCD016" + "000B 0002 0007 000D 0001 05 000E 0001 04"_hex, "SPE_MAXDIG: digits: 4 is not from 5 to 32"}});
}

TEST_F(InteractionTest, TellsCexWhatHappened) {
    const std::string track1 = "B37** ****** **005^DOE/JOHN^3012";
    const std::tuple<std::string, Gestures, std::string> cases[]{
        {"100000", Gestures().swipe(kAmex).press(digit('1')).press(Key::kDown), "006" + "8040 0002"_hex + "03"},
        {"010000", Gestures().press(Key::kEnter).tap(kAmex).swipe({.pan = "1", .track2 = "1=2"}),
         "013" + "8040 0002"_hex + "90" + "8042 0003"_hex + "1=2"},
        {"110100", Gestures().swipe(kAmex),
         "092" + "8040 0002"_hex + "90" + "8041 0020"_hex + track1 + "8042 0017"_hex + "37**********005=3012101"
             + "8043 0013"_hex + "0137**********005=1"},
        {"002000", Gestures().remove().insert(kAmex), "006" + "8040 0002"_hex + "92"},
        // It is in the reader already.
        {"112100", {}, "006" + "8040 0002"_hex + "92"},
        {"001000", Gestures().swipe(kAmex).insert(kAmex).remove(), "006" + "8040 0002"_hex + "91"},
        {"000100", Gestures().swipe(kAmex).tap(kAmex), "006" + "8040 0002"_hex + "94"},
    };
    play();
    for (const auto& [options, gestures, answer] : cases) {
        call_while(gestures, "CEX018" + "0006 0006"_hex + options + "0023 0004"_hex + "0203", "CEX000" + answer);
    }
    refuse("011", Kind::kLayout,
           {{"CEX010" + "0006 0006"_hex + "200000", "SPE_CEXOPT: keys: 2 is not from 0 to 1"},
            {"CEX010" + "0006 0006"_hex + "003000", "SPE_CEXOPT: chip: 3 is not from 0 to 2"},
            {"CEX010" + "0006 0006"_hex + "100001", "SPE_CEXOPT: reserved: 1 instead of 0"},
            {"CEX011" + "0006 0007"_hex + "1000000", "SPE_CEXOPT: 1 bytes too many"}});
    EXPECT_EQ(retire().lastCard->pan, kAmex.pan);
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
    call_while(Gestures().press(digit('1')).press(Key::kClear), "CKE003100", "CKE000003008");
    call_while(Gestures().insert(kAmex), "CKE0040020", "CKE00000221");
    call("CKE003002", "CKE00000221");
    call_while(Gestures().remove(), "CKE003001", "CKE00000220");
    call_while(Gestures().swipe(kAmex).tap(kAmex), "CKE0040001", "CKE00000231");
    refuse("011", Kind::kLayout,
           {{"CKE003200", "CKE: CKE_KEY: 2 is not from 0 to 1"},
            {"CKE003003", "CKE: CKE_ICC: 3 is not from 0 to 2"},
            {"CKE0040002", "CKE: CKE_CTLS: 2 is not from 0 to 1"},
            {"CKE00500000", "CKE: 1 bytes too many"}});
}

std::string gpn(const std::string& head, const std::string& key, const std::string& pan,
                const std::vector<std::string>& prompts) {
    std::string body = head + key + pan + std::to_string(prompts.size());
    for (const std::string& prompt : prompts) { body += padded(prompt, 36); }
    return fmt::format("GPN{:03}{}", body.size(), body);
}

const std::string kNoKey = "30303030303030303030303030303030";

TEST_F(InteractionTest, BringsAPinBlockByEachMethod) {
    play();
    for (const auto& [pin, method, key, pan, answer] : {
             std::tuple("1234", "000", "3030303030303030B4CC3FD9D8D95214"s, "134012345678909      ",
                        "755F4EB3D12E852B00000000000000000000"s),
             {"123456789012", "100", "3EB3B72576BBBE834F0B96AAA5A8B548", "196799990100000000019",
              "9DD1D77471611D6D00000000000000000000"},
             {"1234", "200", kNoKey, "00                   ", "A64E7CDC30D5C722FFFF9876543210E00001"},
             {"12345", "300", kNoKey, "164111111111111111   ", "EE2AEA87C1003FA3FFFF9876543210E00001"},
             {"1234", "300", kNoKey, "0219                 ", "6AF256F77FF949EEFFFF9876543210E00002"},
         }) {
        call_while(Gestures().type(pin), gpn(method, key, pan, {"0412PIN"}), "GPN000036" + answer);
    }
    call("GDU003300", "GDU000020FFFF9876543210E00002");
}

TEST_F(InteractionTest, AsksForAPinAsOftenAsItIsTold) {
    const std::string pan = "134012345678909      ";
    play();
    // Twice the same PIN: whoever differs begins anew.
    call_while(Gestures().type("1235").type("1234").type("1234").type("1234"),
               gpn("200", kNoKey, pan, {"0412PIN", "0412AGAIN"}), "GPN000036AE03BBC9A095DEFEFFFF9876543210E00001");
    call_while(Gestures().press(digit('1')).press(Key::kCancel), gpn("300", kNoKey, pan, {"0412PIN"}), "GPN013");
    call_while(Gestures().type("1234"), gpn("399", kNoKey, pan, {"0412PIN"}), "GPN042");
    call(gpn("300", kNoKey, pan, {"0412PIN", "1399AGAIN"}), "GPN011");
    begin(Gestures().type("12345").press(digit('1')).notify("TYPED"),
          gpn("300", kNoKey, "00" + padded("", 19), {"0412PIN", "0412AGAIN"}), "NTM000005TYPED");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "AGAIN", .typed = "*"}));
    exchange(kCan, kEot);
    for (const Traffic& traffic : pinPad_->traffic()) { EXPECT_EQ(to_text(traffic).find("1234"), std::string::npos); }
    refuse("011", Kind::kLayout,
           {{gpn("400", kNoKey, pan, {"0412PIN"}), "GPN: GPN_METHOD: 4 is not from 0 to 3"},
            {gpn("200", std::string(32, '0'), pan, {"0412PIN"}), "GPN: GPN_WKENC: longer than method 2 has it"},
            {gpn("000", "B4CC3FD9D8D95214B4CC3FD9D8D95214", pan, {"0412PIN"}),
             "GPN: GPN_WKENC: longer than method 0 has it"},
            {gpn("300", kNoKey, "14" + pan.substr(2), {"0412PIN"}), "GPN: GPN_PANLEN: 14 for 13 characters"},
            {gpn("300", kNoKey, "01" + padded("4", 19), {"0412PIN"}), "GPN: GPN_PAN: no card number"},
            {gpn("300", kNoKey, "02" + padded("4A", 19), {"0412PIN"}), "GPN: GPN_PAN: no card number"},
            {gpn("300", kNoKey, pan, {}), "GPN: GPN_ENTRIES: 0 is not from 1 to 9"},
            {gpn("300", kNoKey, pan, {"0312PIN"}), "GPN: GPN_MIN: 3 is not from 4 to 99"},
            {gpn("300", kNoKey, pan, {"0807PIN"}), "GPN: GPN_MAX: 7 is not from 8 to 99"}});
}

TEST_F(InteractionTest, LastsUntilThePersonActs) {
    play();
    call("RMC032" + padded("TAKE YOUR CARD", 32), "RMC000");
    for (const Key key : {Key::kF1, Key::kCancel}) {
        exchange(frame("GKY"), kAck);
        pinPad_->swipe({.pan = "4111111111111111"});
        pinPad_->press(digit('5'));
        pinPad_->press(key);
        expect(frame(key == Key::kF1 ? "GKY004" : "GKY013"));
    }
    // Nobody waits for it: the next command does not get it.
    pinPad_->press(Key::kEnter);
    pinPad_->when("GKY", Gestures().press(Key::kF2));
    pinPad_->when("GKY", Gestures().press(Key::kF3));
    call("GKY", "GKY005");
    call("GKY", "GKY006");
}

TEST_F(InteractionTest, EndsWithItsTime) {
    const std::string options = "000B 0002 0001 000D 0001 00 000E 0001 04"_hex;
    play({.second = std::chrono::milliseconds(1), .patience = std::chrono::seconds(30)});
    call("GKY", "GKY012");
    call("GCD021" + options + "000C 0001 02"_hex, "GCD012");
    play({.second = std::chrono::hours(1)});
    call("CEX015" + "0006 0006"_hex + "100000" + "000C 0001 00"_hex, "CEX012");
    // What the person does at once is still in time.
    pinPad_->when("CEX", Gestures().press(Key::kF1));
    call("CEX015" + "0006 0006"_hex + "100000" + "000C 0001 00"_hex, "CEX000006" + "8040 0002"_hex + "04");
}

TEST_F(InteractionTest, TellsTheHostInBetweenPlainlyAndEnciphered) {
    play({.sessionKey = kSessionKey});
    exchange(frame("GKY"), kAck);
    pinPad_->act(Gestures().notify("TEXT"));
    expect(frame("NTM000004TEXT"));
    exchange(kNak, frame("NTM000004TEXT"));
    pinPad_->press(Key::kF1);
    expect(frame("GKY004"));
    ask(kOpenSession);
    pinPad_->when("GKY", Gestures().notify("TEXT").press(Key::kF1));
    exchange(support::encrypted_frame("85F4FF83818B561EC3ED87569A03F9EB"_hex),
             kAck + support::encrypted_frame("E0DBD8966C7D9C2D7DF939A5665CE1A05F51D24C7ACAC73B0919EDFB9C3B4AA5"_hex)
                 + support::encrypted_frame("DDEB3B9C6650FC6FEAA5009894571462"_hex));
}

}  // namespace
