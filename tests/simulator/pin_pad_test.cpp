// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_pad.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/pin_pad_fixture.h"

using namespace std::string_literals;

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

TEST_F(PinPadTest, AcknowledgesACommandAndAnswersIt) {
    play();
    exchange(opn, ack + opnDone);
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

TEST_F(PinPadTest, ClosesPlainly) {
    Device device;
    device.media.store("LOGO", {});
    play({.device = device});
    exchange("\x16"s + "CLO032BYE                             \x17\x1A\x62"s, ack + "\x16"s + "CLO000\x17\x9E\x03");
    exchange("\x16"s + "CLX\x17\x78\x4C"s, ack + "\x16"s + "CLX000\x17\xFD\x8D");
    exchange("\x16"s + "CLX021\x00\x1E\x00\x08LOGO    \x00\x1B\x00\x05"s + "A\rB C\x17\xC0\xD4"s,
             ack + "\x16"s + "CLX000\x17\xFD\x8D");
    expect_findings({});
}

struct Malformed {
    std::string frame;
    std::string finding;
};

TEST_F(PinPadTest, AnswersACommandThatBreaksItsLayoutWithInvparm) {
    const std::string gin = ack + "\x16GIN011\x17\xB2\x94";
    const std::string gix = ack + "\x16GIX011\x17\x7B\x4B";
    const std::string clo = ack + "\x16" "CLO011\x17\x9A\x02";
    const std::string clx = ack + "\x16" "CLX011\x17\xF9\x8C";
    const std::string open = ack + "\x16OPN011\x17s_";
    const std::vector<std::pair<std::string, Malformed>> cases{
        {gin, {"\x16GIN\x17\xF0\x98"s, "GIN: CMD_LEN1: 3 bytes due, 0 left"}},
        {gin, {"\x16GIN0020\x17\xC1\xDA"s, "GIN: CMD_LEN1: 2 bytes due, 1 left"}},
        {gin, {"\x16GIN00200X\x17\xA9\xC4"s, "GIN: 1 bytes too many"}},
        {gin, {"\x16GIN0020A\x17\xD5\xA2"s, "GIN: GIN_ACQIDX: 0x41 is no digit"}},
        {gin, {"\x16GIN003000\x17\x81\x16"s, "GIN: 1 bytes too many"}},
        {gin, {"\x16GIN0A200\x17Y\x1D"s, "GIN: CMD_LEN1: 0x41 is no digit"}},
        {gix, {"\x16GIX000\x17\x7FJ"s, "GIX: CMD_LEN1: a block without parameters"}},
        {gix, {"\x16GIX003\x00\x01\x00\x17\xE7\x80"s, "GIX: parameter 0x0001: 2 bytes due, 1 left"}},
        {gix, {"\x16GIX005\x00\x01\x00\x02\x80\x17hU"s, "GIX: parameter 0x0001: 2 bytes due, 1 left"}},
        {gix, {"\x16GIX004\x00\x01\x00\x00\x17=\xBA"s, "SPE_IDLIST: no id"}},
        {gix, {"\x16GIX007\x00\x01\x00\x03\x80\x01\x80\x17lh"s, "SPE_IDLIST: id: 2 bytes due, 1 left"}},
        {gix, {"\x16GIX006\x00\x02\x00\x02\x80\x01\x17u8"s, "GIX: SPE_MTHDPIN 0x0002 has no place in it"}},
        {gix,
         {"\x16GIX012\x00\x01\x00\x02\x80\x01\x00\x01\x00\x02\x80\x02\x17\xE7\x81"s,
          "GIX: SPE_IDLIST 0x0001 has no place in it"}},
        {gix,
         {"\x16GIX006\x00\x01\x00\x02\x80\x01"
          "0\x17"
          "3\x17"s,
          "GIX: CMD_LEN2: 3 bytes due, 1 left"}},
        {gix,
         {"\x16GIX006\x00\x01\x00\x02\x80\x01"
          "004\x00\x01\x00\x00"
          "0\x17\xBA\xE3"s,
          "GIX: 1 bytes too many"}},
        {clo,
         {"\x16"
          "CLO031                               \x17\x03\xB3"s,
          "CLO: CLO_MSG: 32 bytes due, 31 left"}},
        {clo,
         {"\x16"
          "CLO032                               \x0D\x17\xB9"
          "C"s,
          "CLO: CLO_MSG: 0x0D is not allowed"}},
        {clx,
         {"\x16"
          "CLX006\x00\x1B\x00\x02\x1F"
          "A\x17u\x96"s,
          "SPE_DSPMSG: text: 0x1F is not allowed"}},
        {clx,
         {"\x16"
          "CLX011\x00\x1E\x00\x07LOGO   \x17pX"s,
          "SPE_MFNAME: text: 8 bytes due, 7 left"}},
        {clx,
         {"\x16"
          "CLX006\x00\x1D\x00\x02"
          "AB\x17\xE8\xEB"s,
          "CLX: SPE_IVCBC 0x001D has no place in it"}},
        {clx,
         {"\x16"
          "CLX133\x00\x1B\x00\x81"s
              + std::string(129, 'A') + "\x17*)",
          "SPE_DSPMSG: more than 128 characters"}},
        {open, {"\x16OPN003AB\x17T?"s, "OPN: CMD_LEN1: 3 bytes due, 2 left"}},
    };
    play();
    for (const auto& [answer, malformed] : cases) {
        exchange(malformed.frame, answer);
        const auto findings = pinPad_->findings();
        ASSERT_FALSE(findings.empty());
        EXPECT_EQ(findings.back(), (Finding{Kind::layout, malformed.finding}));
    }
    EXPECT_EQ(pinPad_->findings().size(), cases.size());
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
    std::vector<std::string> words;
    for (const Traffic& traffic : pinPad_->traffic()) {
        words.push_back((traffic.sender == Sender::host ? "> " : "< ") + traffic.words);
    }
    const std::vector<std::string> due{
        "> GIN device information: \"04\"",
        "< ACK",
        "< GIN 000 OK: \"ACQUIRER 04         001.00 2601010001A0000\"",
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
              "> 16 47 49 4E 30 30 32 30 34 17 22 0E\n  GIN device information: \"04\"\n");
}

}  // namespace

}  // namespace quorvel::sim
