// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <future>
#include <sys/ioctl.h>

#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

TEST_F(PinPadTest, RefusesADamagedFrameAndTakesItsRepetition) {
    play();
    exchange("\x16OPN\x17\xA8\xA8", kNak);
    exchange(kOpn, kAck + kOpnDone);
    expect_findings({{Kind::kFraming, "bad CRC: 0xA8A8 received, 0xA8A9 due"}});
}

TEST_F(PinPadTest, RefusesAFrameThatDoesNotGoOn) {
    play({.frameTimeout = std::chrono::milliseconds(30)});
    exchange("\x16OPN", kNak);
    exchange(kCan, kEot);
    expect_findings({{Kind::kFraming, "the frame does not go on"}});
}

TEST_F(PinPadTest, RepeatsItsResponseThreeTimesUntilCan) {
    const Finding nothing{Kind::kSequence, "NAK without a response before it"};
    play();
    exchange(kNak + kCan, kEot);
    exchange(kOpn, kAck + kOpnDone);
    for (int i = 0; i < 3; ++i) { exchange(kNak, kOpnDone); }
    exchange(kNak + kCan, kEot);
    exchange(kNak + kCan, kEot);
    expect_findings({nothing, {Kind::kSequence, "NAK after the last repetition"}, nothing});
}

// A program that was killed cannot give the port back, and the PIN pad's own end keeps the system from doing it.
TEST(PinPadPort, IsFreeAgainWhenWhoClaimedItIsGone) {
    struct Claimant : Host {
        using Host::Host;
        int control(unsigned long request, int* value = nullptr) { return ::ioctl(descriptor_, request, value); }
    };
    std::promise<void> left;
    PinPad pinPad({.witness = {.acted = {}, .struck = {}, .left = [&left] { left.set_value(); }}});
    pinPad.start();
    {
        Claimant first(pinPad.path());
        ASSERT_EQ(first.control(TIOCEXCL), 0);
        first.send(kCan);
        ASSERT_EQ(first.receive(1), kEot);
    }
    ASSERT_EQ(left.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    Claimant next(pinPad.path());
    int isClaimed = 1;
    ASSERT_EQ(next.control(TIOCGEXCL, &isClaimed), 0);
    EXPECT_EQ(isClaimed, 0);
}

TEST_F(PinPadTest, FindsBytesThatHaveNoMeaning) {
    play();
    exchange("\x06" + kCan + "A" + kCan, kEot + kEot);
    exchange("\x16OP" + kOpn, kAck + kOpnDone);
    expect_findings({{Kind::kFraming, "ACK outside a frame"},
                     {Kind::kFraming, "stray byte 0x41 outside a frame"},
                     {Kind::kFraming, "SYN inside a frame"}});
}

TEST_F(PinPadTest, RefusesWhatIsNoCommand) {
    play();
    refuse("ERR010", Kind::kUnsupported,
           {{"XYZ", "there is no command \"XYZ\""},
            {"gin00200", "there is no command \"gin\""},
            {"\xFF\xFE"
             "A",
             R"(there is no command "\xff\xfeA")"}});
    refuse("ERR010", Kind::kLayout, {{"GI", "a frame without a command"}, {"", "a frame without a command"}});
    exchange("\x16\x12" + "0123456789abcdef\x17\xB9\x4C"s, kAck + frame("ERR003"));
    expect_findings({{Kind::kSequence, "an encrypted frame without a session"}});
}

TEST_F(PinPadTest, AnswersGinWithTheLayoutOfTheIndex) {
    Device device;
    device.acquirers[4] = {.texts = {"SPARE", "1.0", "", "7"}, .number = 42};
    play(device);
    call("GIN00202", "GIN000042QUORVEL APPLICATION2001.00 2601010001A0002");
    call("GIN00204", "GIN000042SPARE               1.0              7  42");
    call("GIN00299", "GIN000042ACQUIRER 99         001.00 2601010001A0000");
}

TEST_F(PinPadTest, AnswersGixWithWhatItHas) {
    play();
    pinPad_->insert(card("visa-chip"));
    refuse("000", Kind::kUnsupported, {{"GIX008" + "0001 0004 1234 9163"_hex, "GIX: there is no item 0x1234"}});
    // All that it has when nothing is named.
    const std::string all = ask("GIX");
    EXPECT_EQ(all.size(), 964U);
    EXPECT_EQ(all.substr(0, 23), "GIX000955" + "8001 000A"_hex + "QV00000001");
    const std::string words = pinPad_->traffic().back().words;
    size_t items = 0;
    for (size_t at = 0; (at = words.find(" PP_", at)) != std::string::npos; ++at) { ++items; }
    EXPECT_EQ(items, 27U);
}

// Items of 500 bytes and of the size given, each behind four bytes of head; a block holds 999.
TEST_F(PinPadTest, AnswersInASecondBlockWhatOneDoesNotHold) {
    const std::string c(500, 'C');
    const auto m = [](size_t size) { return std::string(size, 'M'); };
    const std::string two = "GIX008" + "0001 0004 8005 8022"_hex;
    Device device;
    device.identity.capabilities = device.identity.graphicSize = c;
    for (const auto& [size, request, answer] : {
             std::tuple(491U, two, "GIX000999" + "8005 01F4"_hex + c + "8022 01EB"_hex + m(491)),
             {492U, two, "GIX000504" + "8005 01F4"_hex + c + "496" + "8022 01EC"_hex + m(492)},
             {996U, two, "GIX045"},
             {500U, "GIX010" + "0001 0006 8005 8022 8021"_hex, "GIX045"},
         }) {
        device.identity.mediaSupport = m(size);
        play(device);
        call(request, answer);
    }
}

TEST_F(PinPadTest, AnswersABrokenLayoutWithInvparm) {
    const std::string serial = "0001 0002 8001"_hex;
    play();
    refuse("011", Kind::kLayout,
           {{"GIN", "GIN: CMD_LEN1: 3 bytes due, 0 left"},
            {"GIN00200X", "GIN: 1 bytes too many"},
            {"GIN003000", "GIN: 1 bytes too many"},
            {"GIX000", "GIX: CMD_LEN1: a block without parameters"},
            {"GIX004" + "0001 0000"_hex, "SPE_IDLIST: no id"},
            {"GIX007" + "0001 0003 800180"_hex, "SPE_IDLIST: id: 2 bytes due, 1 left"},
            {"GIX006" + "0002 0002 8001"_hex, "GIX: SPE_MTHDPIN 0x0002 has no place in it"},
            {"GIX012" + serial + serial, "GIX: SPE_IDLIST 0x0001 has no place in it"},
            {"GIX006" + serial + "0", "GIX: CMD_LEN2: 3 bytes due, 1 left"},
            {"GIX006" + serial + "004" + "0001 0000"_hex + "0", "GIX: 1 bytes too many"},
            {"CLO032" + std::string(31, ' ') + "\r", "CLO: CLO_MSG: 0x0D is not allowed"},
            {"CLX006" + "001B 0002 1F41"_hex, "SPE_DSPMSG: text: 0x1F is not allowed"},
            {"CLX006" + "001D 0002 4142"_hex, "CLX: SPE_IVCBC 0x001D has no place in it"},
            {"CLX133" + "001B 0081"_hex + std::string(129, 'A'), "SPE_DSPMSG: more than 128 characters"}});
}

TEST_F(PinPadTest, OwnsUpWhenItsDataDoNotFit) {
    Device device;
    device.identity.specVersion = "2.12a";
    play(device);
    refuse("040", Kind::kInternal, {{"GIN00200", "GIN: '2.12a' of 5 characters for a field of 4"}});
}

TEST_F(PinPadTest, StaysWhenAClientGoes) {
    play();
    exchange(kOpn, kAck + kOpnDone);
    host_->send("\x16OPN");
    host_.emplace(pinPad_->path());
    exchange("\x17\xA8\xA9", kAck + kOpnDone);
}

TEST_F(PinPadTest, StopsThoughNobodyReads) {
    play();
    std::string flood;
    for (int i = 0; i < 10000; ++i) { flood += frame("GIN00200"); }
    EXPECT_LT(host_->send_what_goes(flood), flood.size());
    retire();
}

std::string withheld(int count) {
    std::string text;
    while (count-- > 0) { text += " .."; }
    return text;
}

TEST_F(PinPadTest, TracesEachFrameInHexAndInWords) {
    const std::chrono::system_clock::time_point at(std::chrono::milliseconds(1234));
    play(PinPad::Options{.clock = [at] { return at; }});
    const std::string time = time_text(at);
    EXPECT_EQ(time.substr(19), ".234");
    exchange("\x16XYZ\x17\xB3\x06", kNak);
    exchange(frame("DWK0361100BDBE59C77CF56415BAB6EAD19B49AD8C"), kAck + frame("DWK000"));
    expect_findings({{Kind::kFraming, "bad CRC: 0xB306 received, 0xB305 due"}});
    EXPECT_EQ(to_text(pinPad_->traffic()[0]),
              time + " > 16 58 59 5A 17 B3 06\n  damaged frame: bad CRC: 0xB306 received, 0xB305 due\n");
    EXPECT_EQ(to_text(pinPad_->traffic()[2]),
              time + " > 16 44 57 4B 30 33 36 31" + withheld(35) + " 17 .. ..\n"
                     "  DWK load a PAN working key: DWK_MODE=\"1\", 35 bytes withheld\n");
    // A byte that is stuffed shows so only where it may be seen.
    const std::string wire = frame("GCX022" + "0013 000C"_hex + "000000001000" + "0FFF 0002 1617"_hex);
    EXPECT_EQ(wire_text({Sender::kHost, to_bytes(wire), "", true}),
              "16 47 43 58 30 32 32 00 13 33 00 0C 30 30 30 30 30 30 30 30 31 30 30 30 0F FF 00 02 .. .. 17 .. ..");
}

}  // namespace
