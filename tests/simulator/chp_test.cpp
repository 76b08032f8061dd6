// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

class ChpTest : public PinPadTest {
protected:
    void SetUp() override {
        Device device = loaded_device();
        device.modules[3] = Chip::standard();
        device.chip = card("mastercard-chip");
        play(device);
    }
};

TEST_F(ChpTest, PowersAChipAndSpeaksToIt) {
    const std::string select = "00A4040007A000000004101000";
    const std::string selected = "6F178407A0000000041010A50C500A4D4153544552434152449000";
    call("CHP00501000", "CHP0000210093B6500002063CB6800");
    call("CHP03102013" + select, "CHP000057027" + selected);
    call("CHP0110200300B201", "CHP0000070026700");
    call("CHP0190200700A4040005A000", "CHP0000070026700");
    call("CHP00500000", "CHP000000");
    call("CHP00531000", "CHP0000210093B6500002063CB6800");
    call("CHP0133200480CA9F17", "CHP0000150069F1701039000");
    refuse("010", Kind::kSequence, {{"CHP0130200400B2010C", "CHP: a command to a chip without power"}});
}

TEST_F(ChpTest, HandsThePinToTheChip) {
    const std::string message = padded("PIN FOR THE CARD", 32);
    const auto verify = [&](const std::string& format) { return "CHP0460300400200080" + format + message; };
    call("CHP00501000", "CHP0000210093B6500002063CB6800");
    for (const auto& [pin, format, response] : {
             std::tuple("1234", "2", "9000"),
             {"1111", "2", "63C2"},
             {"1234", "0", "63C1"},
             {"1234", "2", "9000"},
             {"1234", "1", "63C2"},
             {"1234", "9", "63C1"},
         }) {
        call_while(Gestures().type(pin), verify(format), "CHP000007002"s + response);
    }
    call_while(Gestures().press(Key::kCancel), verify("2"), "CHP013");
    call_while(Gestures().press(digit('1')).remove(), verify("2"), "CHP043");
}

TEST_F(ChpTest, NeedsAChipThatAnswers) {
    call("CHP00511000", "CHP051");
    pinPad_->act(inserted("mute-chip"));
    call("CHP00501000", "CHP060");
    pinPad_->act(inserted("visa-magnetic"));
    call("CHP00501000", "CHP043");
    const std::string message(32, ' ');
    refuse("011", Kind::kLayout,
           {{"CHP00504000", "CHP: CHP_OPER: 4 is not from 0 to 3"},
            {"CHP0130100400B2010C", "CHP: CHP_CMDLEN: 4 instead of 0"},
            {"CHP0480300500200080002" + message, "CHP: CHP_CMDLEN: no header of four bytes"},
            {"CHP04603004002000803" + message, "CHP: CHP_PINFMT: no such format"}});
}

}  // namespace
