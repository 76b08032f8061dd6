// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "tests/simulator/command_fixture.h"

using namespace std::string_literals;
using namespace support::literals;

namespace quorvel::sim {

namespace {

const std::string dsp = "DSP032SIMULATED                       ";

class WaitTest : public CommandTest {
protected:
    void begin(const std::string& request) { exchange(support::frame(request), ack); }
    void end(const std::string& response) { expect(support::frame(response)); }
};

TEST_F(WaitTest, LastsUntilThePersonActs) {
    play();
    call(dsp, "DSP000");
    begin("RMC032TAKE YOUR CARD                  ");
    end("RMC000");
    for (const Key key : {Key::f1, Key::cancel}) {
        begin("GKY");
        pinPad_->swipe({.pan = "4111111111111111"});
        pinPad_->press(digit('5'));
        pinPad_->press(key);
        end(key == Key::f1 ? "GKY004" : "GKY013");
    }
    // Nobody waits for it: the next command does not get it.
    pinPad_->press(Key::enter);
    pinPad_->when("GKY", Gestures().press(Key::f2));
    pinPad_->when("GKY", Gestures().press(Key::f3));
    call("GKY", "GKY005");
    call("GKY", "GKY006");
    expect_findings({});
}

TEST_F(WaitTest, EndsWithTheNextCommandWhichIsAFault) {
    play();
    begin("GKY");
    call("GIN00203", "GIN000042APP00301000001A00B00001.00 260101000101T03");
    pinPad_->press(Key::enter);
    expect_findings({{Kind::sequence, "a command came while GKY waited"}});
}

TEST_F(WaitTest, EndsWithItsTime) {
    const std::string options = "000B 0002 0001 000D 0001 00 000E 0001 04"_hex;
    play({.second = std::chrono::milliseconds(1), .patience = std::chrono::seconds(30)});
    call("GKY", "GKY012");
    call("GCD021" + options + "000C 0001 02"_hex, "GCD012");
    play({.second = std::chrono::hours(1)});
    call("CEX015" + "0006 0006"_hex + "100000" + "000C 0001 00"_hex, "CEX012");
    // What the person does at once is still in time.
    pinPad_->when("CEX", Gestures().press(Key::f1));
    call("CEX015" + "0006 0006"_hex + "100000" + "000C 0001 00"_hex, "CEX000006" + "8040 0002"_hex + "04");
    expect_findings({});
}

TEST_F(WaitTest, TellsTheHostInBetweenPlainlyAndEnciphered) {
    SessionKey key{};
    for (size_t i = 0; i < key.size(); ++i) key.at(i) = static_cast<uint8_t>(i);
    play({.sessionKey = key});
    begin("GKY");
    pinPad_->act(Gestures().notify("TEXT"));
    end("NTM000004TEXT");
    exchange(nak, support::frame("NTM000004TEXT"));
    pinPad_->press(Key::f1);
    end("GKY004");
    host_->send(support::frame("OPN5230256" + std::string(512, 'F') + "3010001"));
    host_->receive(1 + 1 + 6 + 3 + 515 + 3);
    pinPad_->when("GKY", Gestures().notify("TEXT").press(Key::f1));
    exchange(support::encrypted_frame("85F4FF83818B561EC3ED87569A03F9EB"_hex),
             ack + support::encrypted_frame("E0DBD8966C7D9C2D7DF939A5665CE1A05F51D24C7ACAC73B0919EDFB9C3B4AA5"_hex)
                 + support::encrypted_frame("DDEB3B9C6650FC6FEAA5009894571462"_hex));
    expect_findings({});
}

}  // namespace

}  // namespace quorvel::sim
