// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "simulator/keys/secure_channel.h"
#include "tests/simulator/command_fixture.h"
#include "tests/simulator/host_key.h"
#include "wire/hex.h"

using namespace std::string_literals;

namespace quorvel::sim {

namespace {

// Whoever has no use for the session key needs no key pair.
const std::string modulus(512, 'F');
const std::string keyText = "000102030405060708090A0B0C0D0E0F";

std::string wire(std::string_view hex) {
    const Bytes bytes = from_hex(hex);
    return {bytes.begin(), bytes.end()};
}

SessionKey key() {
    SessionKey key{};
    std::ranges::copy(from_hex(keyText), key.begin());
    return key;
}

class SessionTest : public CommandTest {
protected:
    void open() {
        play({.sessionKey = key()});
        host_->send(support::frame("OPN5230256" + modulus + "3010001"));
        expect(ack + "\x16OPN000515256");
        EXPECT_EQ(host_->receive(512 + 3).substr(512, 1), "\x17");
    }
};

TEST(SecureChannel, DrawsAKeyEachTimeAndKeepsLeadingZerosOfTheCryptogram) {
    const HostKey host(2048);
    SecureChannel channel(std::nullopt);
    std::set<std::string> keys;
    for (const int first : {0x00, 0x30}) {
        Bytes cryptogram;
        do { cryptogram = channel.open({to_bytes(host.modulus()), {1, 0, 1}}); } while (cryptogram.front() != first);
        ASSERT_EQ(cryptogram.size(), 256U);
        keys.insert(host.open_padded({reinterpret_cast<const char*>(cryptogram.data()), cryptogram.size()}));
        EXPECT_EQ(keys.rbegin()->size(), 16U);
    }
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(SessionTest, TravelsEncipheredAndShowsItsKeyNowhere) {
    open();
    exchange(wire("161263C0C4B71B719740552D8D75454C59E01708B1"),
             ack
                 + wire("16123A43E1B09E2B470F4F054B9AD7E435786B78C384F623DA4A0E89E791725EF708CEBD1E625738B5FFF3DC4E46"
                        "671F766F757CF636CE1D531D53AC5B3CFC1498B9170CA5"));
    // Twelve bytes and the head fill a block: another one follows.
    exchange(wire("1612939936B425C89CCC88D75E3BB37AAF5D7537EAE4B0420730AF4DD0015000228C178162"),
             ack + wire("1612641CAA936ACE133677A7EFF24EB655E96328A578B2BEB5183DF5F41534BDBF2C9D17F269"));
    exchange(wire("161204A0FF0251D9DA58D7D3504E9088CD621785D4"),
             ack + wire("161260822365E74C1F13339B4AAD4A98444FBE17DA92"));
    std::string all;
    std::vector<std::string> words;
    for (const Traffic& traffic : pinPad_->traffic()) {
        words.push_back(traffic.words);
        all += to_text(traffic);
    }
    EXPECT_EQ(words[3], "enciphered GIN device information: GIN_ACQIDX=\"04\"");
    EXPECT_EQ(words[8], "enciphered GIX 000 OK: PP_SERNUM=\"QV00000001\"");
    EXPECT_EQ(words[11], "enciphered ERR 010 INVCALL");
    std::erase(all, ' ');
    EXPECT_EQ(all.find(keyText), std::string::npos);
    expect_findings({{Kind::unsupported, "there is no command \"XYZ\""}});
}

TEST_F(SessionTest, RefusesFramesThatAreNotSealedAsTheyMustBe) {
    const std::vector<std::pair<std::string, Finding>> cases{
        {"16121707C7", {Kind::layout, "an encrypted frame: 0 bytes are no whole blocks"}},
        {"161263C0C4B71B719740552D8D75454C591710F2",
         {Kind::layout, "an encrypted frame: 15 bytes are no whole blocks"}},
        {"161261FE650BB3B3BB0000DA07E555F775B817D15F",
         {Kind::layout, "an encrypted frame: DATALEN is 13, 12 bytes are there"}},
        {"16124BE1E2018B9C21842A2ADAD3EF3E462317869C",
         {Kind::layout, "an encrypted frame: bad DATACRC: 0xD5DA received, 0xD5DB due"}},
        {"161263C0C4B71B719740552D8D75454C59E0C6D83D78A8C32E942C0A701F58CD9F9E17DFBF",
         {Kind::layout, "an encrypted frame: 20 bytes of padding, 4 due"}},
        {"1612835D8AD82363A7E0C38750140D4AA17817842F",
         {Kind::layout, "an encrypted frame: 0 bytes of padding, 16 due"}},
        {"1612ABD3A633F2275B5436F86C6CBF847A4717BBD1",
         {Kind::layout, "an encrypted frame: a byte of the padding is not zero"}},
        {"16121C674E5AA0F28AA10FB7D8DAD8A62CD717291D", {Kind::sequence, "an enciphered OPN"}},
        {"1647494E303032303417220E", {Kind::sequence, "a plain command inside an encrypted session"}},
    };
    open();
    for (const auto& [frame, finding] : cases) {
        exchange(wire(frame), ack + "\x16" + "ERR009\x17\x3A\xB9");
        EXPECT_EQ(pinPad_->findings().back(), finding);
    }
    EXPECT_EQ(pinPad_->findings().size(), cases.size());
}

TEST_F(SessionTest, GoesOnWhenItIsOpenedPlainly) {
    open();
    exchange("\x16OPN\x17\xA8\xA9", ack + "\x16OPN000\x17\x77\x5E");
    exchange(wire("161204A0FF0251D9DA58D7D3504E9088CD621785D4"),
             ack + wire("161260822365E74C1F13339B4AAD4A98444FBE17DA92"));
}

// Even when the command is refused: the host has dropped its key before it knows.
TEST_F(SessionTest, EndsWithACloseThatIsAnsweredPlainly) {
    const std::vector<std::pair<std::string, std::string>> closes{
        {"16124D1068AD97E8779FA16448D2AC874E180E28D1EC5B2E1FCFB0CFD97D515D4D6A8A5F29DD8F13363C42EB13333280197F809817AB"
         "D8",
         "\x16"
         "CLO000\x17\x9E\x03"},
        {"1612BA2224B678E4C7D6F51B205D3AF7C02F1794D9",
         "\x16"
         "CLX000\x17\xFD\x8D"},
        {"16125E7BAC557602DF133792414254402F1809176CA0",
         "\x16"
         "CLX011\x17\xF9\x8C"},
    };
    for (const auto& [close, answer] : closes) {
        open();
        exchange(wire(close), ack + answer);
        exchange(wire("161263C0C4B71B719740552D8D75454C59E01708B1"), ack + "\x16" + "ERR003\x17\xD5\x72");
        EXPECT_EQ(pinPad_->findings().back(), (Finding{Kind::sequence, "an encrypted frame without a session"}));
        exchange("\x16OPN\x17\xA8\xA9", ack + "\x16OPN000\x17\x77\x5E");
    }
}

TEST_F(SessionTest, IsRefusedForAPublicKeyOutOfShape) {
    play();
    refuse("OPN011", Kind::layout,
           {{"OPN5231256" + modulus + "3010001", "OPN: OPN_OPMODE: 1 instead of 0"},
            {"OPN5230255" + modulus + "3010001", "OPN: OPN_MODLEN: 255 instead of 256"},
            {"OPN5230256" + modulus + "1303003", "OPN: OPN_EXPLEN: 1 instead of 3"},
            {"OPN5230256" + modulus + "3010000", "OPN: an even number in the public key"},
            {"OPN5230256" + modulus.substr(1) + "23010001", "OPN: an even number in the public key"},
            {"OPN52302567" + modulus.substr(1) + "3010001", "OPN: OPN_MOD: less than 2048 bits"},
            {"OPN5230256d" + modulus.substr(1) + "3010001", "OPN: OPN_MOD: 0x64 is no hexadecimal digit"},
            {"OPN5240256" + modulus + "30100010", "OPN: 1 bytes too many"}});
    exchange(wire("161263C0C4B71B719740552D8D75454C59E01708B1"), ack + "\x16" + "ERR003\x17\xD5\x72");
}

}  // namespace

}  // namespace quorvel::sim
