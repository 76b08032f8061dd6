// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_pad.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/command_fixture.h"

using namespace std::string_literals;
using namespace support::literals;

namespace quorvel::sim {

namespace {

using Kind = Finding::Kind;

const std::string opn = "\x16OPN\x17\xA8\xA9";
const std::string opnDone = "\x16OPN000\x17\x77\x5E";

TEST_F(PinPadTest, AnswersCanWithEot) {
    play();
    exchange(can, eot);
    exchange(can + can, eot + eot);
    expect_findings({});
}

TEST_F(PinPadTest, RefusesADamagedFrameAndTakesItsRepetition) {
    play();
    exchange("\x16OPN\x17\xA8\xA8", nak);
    exchange(opn, ack + opnDone);
    expect_findings({{Kind::framing, "bad CRC: 0xA8A8 received, 0xA8A9 due"}});
}

TEST_F(PinPadTest, RefusesAFrameThatDoesNotGoOn) {
    play({.frameTimeout = std::chrono::milliseconds(30)});
    exchange("\x16OPN", nak);
    exchange(can, eot);
    expect_findings({{Kind::framing, "the frame does not go on"}});
}

TEST_F(PinPadTest, RepeatsItsResponseThreeTimes) {
    play();
    exchange(opn, ack + opnDone);
    for (int i = 0; i < 3; ++i) exchange(nak, opnDone);
    exchange(nak + can, eot);
    expect_findings({{Kind::sequence, "NAK after the last repetition"}});
}

TEST_F(PinPadTest, ForgetsItsResponseOnCan) {
    play();
    exchange(nak + can, eot);
    exchange(opn, ack + opnDone);
    exchange(can + nak + can, eot + eot);
    expect_findings(
        {{Kind::sequence, "NAK without a response before it"}, {Kind::sequence, "NAK without a response before it"}});
}

TEST_F(PinPadTest, FindsBytesThatHaveNoMeaning) {
    play();
    exchange("\x06" + can + "A" + can, eot + eot);
    exchange("\x16OP" + opn, ack + opnDone);
    expect_findings({{Kind::framing, "ACK outside a frame"},
                     {Kind::framing, "stray byte 0x41 outside a frame"},
                     {Kind::framing, "SYN inside a frame"}});
}

TEST_F(PinPadTest, RefusesWhatIsNoCommand) {
    play();
    const std::string unknown = ack + "\x16"s + "ERR010\x17\xB7\x11";
    exchange("\x16XYZ\x17\xB3\x05", unknown);
    exchange("\x16gin00200\x17\x5C\xA8", unknown);
    exchange("\x16\xFF\xFE" + "A\x17\xEF\xDB"s, unknown);
    exchange("\x16GI\x17\x4D\xBF", unknown);
    exchange("\x16\x17\x62\xD6", unknown);
    exchange("\x16\x12" + "0123456789abcdef\x17\xB9\x4C"s, ack + "\x16"s + "ERR003\x17\xD5\x72");
    expect_findings({{Kind::unsupported, "there is no command \"XYZ\""},
                     {Kind::unsupported, "there is no command \"gin\""},
                     {Kind::unsupported, R"(there is no command "\xff\xfeA")"},
                     {Kind::layout, "a frame without a command"},
                     {Kind::layout, "a frame without a command"},
                     {Kind::sequence, "an encrypted frame without a session"}});
}

TEST_F(PinPadTest, AnswersGinWithTheLayoutOfTheIndex) {
    Device device;
    device.acquirers[4] = {.texts = {"SPARE", "1.0", "", "7"}, .number = 42};
    play({.device = device});
    exchange("\x16GIN00200\x17\xEE\xCA", ack
                                             + "\x16GIN000100QUORVEL             VIRTUAL;SIM        C"
                                               "QSO 0.1.0           2.12001.00 260101   QV00000001          \x17\x5B\x2E");
    exchange("\x16GIN00202\x17\x88\xA8", ack + "\x16GIN000042QUORVEL APPLICATION2001.00 2601010001A0002\x17\xBA\x77");
    exchange("\x16GIN00203\x17\xBB\x99", ack + "\x16GIN000042APP00301000001A00B00001.00 260101000101T03\x17\x89\x1B");
    exchange("\x16GIN00204\x17\x22\x0E", ack + "\x16GIN000042SPARE               1.0              7  42\x17\xC2\x62");
    exchange("\x16GIN00299\x17\xCA\xC3", ack + "\x16GIN000042ACQUIRER 99         001.00 2601010001A0000\x17\xF4\x3A");
    expect_findings({});
}

TEST_F(PinPadTest, AnswersGixWithWhatItHas) {
    Device device = Device::standard();
    device.tables.load(5, "V00000001");
    play({.device = device});
    exchange("\x16GIX012\x00\x01\x00\x08\x80\x01\x91\x00\x93\x05\x80\x62\x17\x80\x5C"s,
             ack
                 + "\x16GIX000050\x80\x01\x00\x0AQV00000001\x91\x00\x00\x0A\xFF\xFF\x98\x76\x54\x32\x10\xE0\x00\x00"
                   "\x93\x05\x00\x0AV00000001 \x80\x62\x00\x04\x00\x04\x00\x00\x17\x90\x0D"s);
    expect_findings({});
}

TEST_F(PinPadTest, LeavesOutOfGixWhatItDoesNotHave) {
    play();
    exchange("\x16GIX008\x00\x01\x00\x04\x12\x34\x91\x63\x17\x7B\x67"s, ack + "\x16GIX000\x17\x7F\x4A");
    expect_findings({{Kind::unsupported, "GIX: there is no item 0x1234"}});
}

TEST_F(PinPadTest, DescribesItselfWhenGixNamesNothing) {
    play();
    host_->send("\x16GIX\x17\x59\x4D");
    // Two of the 964 bytes are stuffed: they stand in the ids 0x8013 and 0x8016.
    EXPECT_EQ(host_->receive(1 + 1 + 964 + 2 + 3).size(), 971U);
    const std::string words = pinPad_->traffic().back().words;
    EXPECT_EQ(words.substr(0, 34), "GIX 000 OK: PP_SERNUM=\"QV00000001\"");
    size_t items = 0;
    for (size_t at = 0; (at = words.find(" PP_", at)) != std::string::npos; ++at) ++items;
    EXPECT_EQ(items, 27U);
}

// Items of 500 bytes and of the size given, each behind four bytes of head; a block holds 999.
TEST_F(PinPadTest, AnswersInASecondBlockWhatOneDoesNotHold) {
    const std::string c(500, 'C');
    const std::vector<std::pair<size_t, std::string>> cases{
        {491, "\x16GIX000999\x80\x05\x01\xF4"s + c + "\x80\x22\x01\xEB"s + std::string(491, 'M') + "\x17\x3C\x2A"},
        {492, "\x16GIX000504\x80\x05\x01\xF4"s + c + "496\x80\x22\x01\xEC"s + std::string(492, 'M') + "\x17\x5E\x80"},
        {996, "\x16GIX045\x17\x5C\x7F"},
    };
    for (const auto& [size, answer] : cases) {
        Device device;
        device.identity.capabilities = c;
        device.identity.mediaSupport = std::string(size, 'M');
        play({.device = device});
        exchange("\x16GIX008\x00\x01\x00\x04\x80\x05\x80\x22\x17\x09\x9D"s, ack + answer);
        expect_findings({});
    }
}

TEST_F(PinPadTest, AnswersWithAnOverflowWhatTwoBlocksDoNotHold) {
    Device device;
    device.identity.capabilities = device.identity.mediaSupport = device.identity.graphicSize = std::string(500, 'C');
    play({.device = device});
    exchange("\x16GIX010\x00\x01\x00\x06\x80\x05\x80\x22\x80\x21\x17\x93\x49"s, ack + "\x16GIX045\x17\x5C\x7F");
}

class LayoutTest : public CommandTest {};

TEST_F(LayoutTest, ThatIsBrokenIsAnsweredWithInvparm) {
    const std::string serial = "0001 0002 8001"_hex;
    play();
    refuse("GIN011", Kind::layout,
           {{"GIN", "GIN: CMD_LEN1: 3 bytes due, 0 left"},
            {"GIN0020", "GIN: CMD_LEN1: 2 bytes due, 1 left"},
            {"GIN00200X", "GIN: 1 bytes too many"},
            {"GIN0020A", "GIN: GIN_ACQIDX: 0x41 is no digit"},
            {"GIN003000", "GIN: 1 bytes too many"},
            {"GIN0A200", "GIN: CMD_LEN1: 0x41 is no digit"}});
    refuse("GIX011", Kind::layout,
           {{"GIX000", "GIX: CMD_LEN1: a block without parameters"},
            {"GIX003" + "0001 00"_hex, "GIX: parameter 0x0001: 2 bytes due, 1 left"},
            {"GIX005" + "0001 0002 80"_hex, "GIX: parameter 0x0001: 2 bytes due, 1 left"},
            {"GIX004" + "0001 0000"_hex, "SPE_IDLIST: no id"},
            {"GIX007" + "0001 0003 800180"_hex, "SPE_IDLIST: id: 2 bytes due, 1 left"},
            {"GIX006" + "0002 0002 8001"_hex, "GIX: SPE_MTHDPIN 0x0002 has no place in it"},
            {"GIX012" + serial + serial, "GIX: SPE_IDLIST 0x0001 has no place in it"},
            {"GIX006" + serial + "0", "GIX: CMD_LEN2: 3 bytes due, 1 left"},
            {"GIX006" + serial + "004" + "0001 0000"_hex + "0", "GIX: 1 bytes too many"}});
    refuse("CLO011", Kind::layout,
           {{"CLO031" + std::string(31, ' '), "CLO: CLO_MSG: 32 bytes due, 31 left"},
            {"CLO032" + std::string(31, ' ') + "\r", "CLO: CLO_MSG: 0x0D is not allowed"}});
    refuse("CLX011", Kind::layout,
           {{"CLX006" + "001B 0002 1F41"_hex, "SPE_DSPMSG: text: 0x1F is not allowed"},
            {"CLX011" + "001E 0007"_hex + "LOGO   ", "SPE_MFNAME: text: 8 bytes due, 7 left"},
            {"CLX006" + "001D 0002 4142"_hex, "CLX: SPE_IVCBC 0x001D has no place in it"},
            {"CLX133" + "001B 0081"_hex + std::string(129, 'A'), "SPE_DSPMSG: more than 128 characters"}});
    refuse("OPN011", Kind::layout, {{"OPN003AB", "OPN: CMD_LEN1: 3 bytes due, 2 left"}});
}

TEST_F(PinPadTest, OwnsUpWhenItsDataDoNotFit) {
    Device device;
    device.identity.specVersion = "2.12a";
    play({.device = device});
    exchange("\x16GIN00200\x17\xEE\xCA", ack + "\x16GIN040\x17\x6A\x55");
    expect_findings({{Kind::internal, "GIN: '2.12a' of 5 characters for a field of 4"}});
}

TEST_F(PinPadTest, StaysWhenAClientGoes) {
    play();
    exchange(opn, ack + opnDone);
    host_->send("\x16OPN");
    host_.emplace(pinPad_->path());
    exchange("\x17\xA8\xA9", ack + opnDone);
    expect_findings({});
}

TEST_F(PinPadTest, StopsThoughNobodyReads) {
    play();
    host_->flood("\x16GIN00200\x17\xEE\xCA");
    pinPad_->stop();
    pinPad_.reset();
}

TEST_F(PinPadTest, TracesEachFrameInHexAndInWords) {
    play();
    exchange("\x16GIN00204\x17\x22\x0E", ack + "\x16GIN000042ACQUIRER 04         001.00 2601010001A0000\x17\x7D\x39");
    exchange("\x16GIX008\x00\x01\x00\x04\x80\x01\x91\x00\x17\xD7\xBB"s,
             ack + "\x16GIX000028\x80\x01\x00\x0AQV00000001\x91\x00\x00\x0A\xFF\xFF\x98\x76\x54\x32\x10\xE0\x00\x00\x17\x0C\x2C"s);
    exchange("\x16XYZ\x17\xB3\x06", nak);
    exchange(can, eot);
    exchange(
        "\x16"
        "DWK0361100BDBE59C77CF56415BAB6EAD19B49AD8C\x17\x12\x34",
        nak);
    EXPECT_EQ(to_text(pinPad_->traffic()[10]).substr(0, 31), "> 16 44 57 4B ... (46 bytes)\n  ");
    std::vector<std::string> words;
    for (const Traffic& traffic : pinPad_->traffic()) {
        words.push_back((traffic.sender == Sender::host ? "> " : "< ") + traffic.words);
    }
    words.resize(10);
    const std::vector<std::string> due{
        "> GIN device information: GIN_ACQIDX=\"04\"",
        "< ACK",
        "< GIN 000 OK: GIN_DATA=\"ACQUIRER 04         001.00 2601010001A0000\"",
        "> GIX device information: SPE_IDLIST=80019100",
        "< ACK",
        "< GIX 000 OK: PP_SERNUM=\"QV00000001\", PP_KSNTDESP0=FFFF9876543210E00000",
        "> damaged frame: bad CRC: 0xB306 received, 0xB305 due",
        "< NAK",
        "> CAN",
        "< EOT",
    };
    EXPECT_EQ(words, due);
    EXPECT_EQ(to_text(pinPad_->traffic()[0]),
              "> 16 47 49 4E 30 30 32 30 34 17 22 0E\n  GIN device information: GIN_ACQIDX=\"04\"\n");
}

}  // namespace

}  // namespace quorvel::sim
