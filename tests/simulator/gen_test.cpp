// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cardholder/digit_entry.h"
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

// What fills up a hexadecimal field in front of its value.
std::string pads(size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) { text += "30"; }
    return text;
}

const std::string kAtr = "1109" + pads(27) + "3B6500002063CB6800";

class GenTest : public PinPadTest {
protected:
    void SetUp() override {
        Device device = Device::standard();
        device.chip = device.lastCard = Card{.pan = "4111111111111111", .chip = Chip::standard()};
        play(device);
    }
};

TEST_F(GenTest, TellsWhereKeysAreEnciphersAndReadsTags) {
    call("GEN01302008K3110099", "GEN00010310011" + std::string(98, '0'));
    call("GEN01302008K3319999", "GEN0000040010");
    call("GEN02603021033994111111111111111", "GEN042");
    call("GEN042030370330041111111111111110011223344556677",
         "GEN000055052FFFF9876543210E00001DCCD4E096CCD9A4FA8356B9FB7997032");
    call("GEN0100300503300", "GEN000023020FFFF9876543210E00002");
    call("GEN0150301002829F175A", "GEN000039036820238009F1701035A084111111111111111");
    call("GEN01804013040049F029F17", "GEN0000110049F170103");
    refuse("010", Kind::kUnsupported, {{"GEN01302008K4000000", "GEN: there is no 02/K4"}});
    refuse("011", Kind::kLayout,
           {{"GEN01302008K3000504", "GEN: GEN02K3_IDXEND: 4 is not from 5 to 99"},
            {"GEN01302008K3400000", "GEN: GEN02K3_KEYTYPE: 4 is not from 0 to 3"},
            {"GEN01302008K3020000", "GEN: GEN02K3_KEYUSE: 2 is not from 0 to 1"},
            {"GEN01402008K30000009", "GEN: 1 bytes too many"},
            {"GEN01204007040025A", "GEN: GEN0404_TAGSLEN: 2 bytes, 2 digits follow"},
            {"GEN00903004025G", "GEN: GEN_TAGS: 0x47 is no hexadecimal digit"},
            {"GEN0100300502829", "GEN: GEN_TAGS: an odd number of hexadecimal digits"},
            {"GEN02603021032004111111111111111", "GEN: GEN0303_METHOD: 2 instead of 3"},
            {"GEN018030130330041111111", "GEN: GEN0303_INPUT: 8 digits"}});
}

TEST_F(GenTest, PowersChipsAndExchangesApdus) {
    const std::string select = "GEN0360403102000A40400007A0000000031010";
    const std::string verify = "GEN0380403302000200080008";
    call("GEN009040040110", "GEN000079076" + kAtr);
    call("GEN009040040140", "GEN000079076" + kAtr);
    call("GEN009040040120", "GEN000079076" + kAtr);
    call("GEN009040040143", "GEN0000790760000" + pads(36));
    call(select + "016", "GEN000043040090000166F0E8407A0000000031010A50350015A");
    call(select + "015", "GEN00001100806C10000");
    call(select + "000", "GEN00001100809000000");
    call("GEN0220401702000880000000000", "GEN00001100806D00000");
    call(verify + "241111FFFFFFFFFF000", "GEN000011008063C2000");
    call(verify + "241234FFFFFFFFFF000", "GEN00001100809000000");
    call(verify + "251234FFFFFFFFFF000", "GEN000011008063C2000");
    call("GEN0220401702800880000000000", "GEN051");
    refuse("011", Kind::kLayout,
           {{"GEN009040040100", "GEN: GEN0401_OPER: 0 is not from 1 to 4"},
            {"GEN009040040119", "GEN: GEN_SLOT: 9 is not from 0 to 8"},
            {"GEN0220401702000880000256000", "GEN: GEN0402_LC: 256 is not from 0 to 255"},
            {"GEN0220401702000880000000257", "GEN: GEN0402_LE: 257 is not from 0 to 256"}});
}

TEST_F(GenTest, ShowsThePinToTheChipOnly) {
    const auto typed = [&](const Gestures& gestures, const std::string& answer) {
        call_while(gestures, "GEN053040480300020008020412" + padded("ENTER PIN", 32), answer);
    };
    typed(Gestures().type("1234"), "GEN00000800510000");
    call("GEN009040040110", "GEN000079076" + kAtr);
    typed(Gestures().press(digit('9')).press(Key::kClear).type("1234"), "GEN00000800509000");
    typed(Gestures().press(digit('1')).press(Key::kCancel), "GEN013");
    typed(Gestures().remove().type("1234"), "GEN043");
    call("GEN053040480300020008029999" + padded("", 32), "GEN043");
    call("GEN0100400504000", "GEN043");
    refuse("011", Kind::kLayout,
           {{"GEN0530404803000200080G0412" + padded("", 32), "GEN: GEN0403_FORMAT: no hexadecimal digit"},
            {"GEN053040480300020008020504" + padded("", 32), "GEN: GEN0403_PINMAX: 4 is not from 5 to 99"}});
    for (const Traffic& traffic : pinPad_->traffic()) { EXPECT_EQ(traffic.words.find("1234"), std::string::npos); }
}

TEST(DigitEntry, ShowsHowManyDigitsThereAre) {
    Screen screen;
    DigitEntry entry(screen, "PIN", 4, 5, DigitEntry::Echo::kCount);
    std::string shown = screen.content().typed;
    for (const Key key :
         {digit('1'), Key::kClear, digit('1'), digit('2'), digit('3'), digit('4'), digit('5'), digit('6'), Key::kUp}) {
        EXPECT_FALSE(entry.on(KeyPressed{key}));
        shown += "," + screen.content().typed;
    }
    EXPECT_EQ(shown, ",*,,*,**,***,****,*****,*****,*****");
    EXPECT_EQ(screen.content().text, "PIN");
    EXPECT_EQ(entry.on(KeyPressed{Key::kEnter}).value().digits, "12345");
}

}  // namespace
