// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <openssl/bn.h>
#include <string>
#include <vector>

#include "simulator/keys/secure_channel.h"
#include "tests/simulator/pin_pad_fixture.h"

using namespace std::string_literals;

namespace quorvel::sim {

namespace {

// A key pair of the host's. It has a second exponent, whose first byte is the padding of hexadecimal fields.
const std::string modulus =
    "D08436C6CD1BFE948BE54818A467A8274A8D2BD7FD5FDB3E3E547F843C2A0A4992349C56B9ACFC6D1A77F606D4295490064C"
    "BF3D639BFCF1E1364E022FA48834DF62F4F474DE2C6FA44CFE7411DE746279D944854E5777E8444AE1470270A9DB901A54DF"
    "4B3B89EB013726AFCEBB8B4CDEC46FAE963B04B0BE0E599E9CE702F52ACB5023B28E3AAE3D0B2E8E1AD12DB2168B7EAF843A"
    "8BD056ED7B692C1EF4E578D7D43880963A2A42C48692A719F4DE526D10B76AB2EF664769CE972FF7A47603D03560B86E4CF8"
    "E2366738FC4B9A9A7275AB53C208960A17E697E64FC773FDB83E265F045637690B5E7D0112CCED6975D9540279DF093ED6F5"
    "B3711F25FBD1";
const std::string privateExponent =
    "C5E8A780FB4E95CC721775DD85B5A8E15A1E31BDF88C11B0BB424221C564F58CACCB6893DBF9B740EABD6F733DCDD8A83682"
    "838505D519388ED49727F606490D3DF5539FEE88AD4E6D78728EC2230CFE26BEB40D7EB5006720E29D7D6370819796E79724"
    "B4E856D809B849ECD5E025B0194402E887488F041DEFCADA03FC334DBD5DF6B68E3F9A0AF46A924043D746D1515CD4AF18F1"
    "9FD626C98D660028870190F8EAF31F9CB3A6C4985DDA26B2971E7A1CD240902A16224D8A861014E065AAE9FD093453F00E4B"
    "03775E92F4943DFC29EAD60A2E77C7DE52ADFE733695073FD9C588EE7A18AAD993F4C740668FD77FB8939F93B8B26C2AF849"
    "DE8B0832727D";
const std::string privateExponentOf300001 =
    "7A1BDCBA32D8EC39B90DEB64B5D8EE3DBFE73E672F49BCDE095AD54413EBB87B4992D0C1D035B18841AFB24A04107A8F2391"
    "1F363978AD09385C0458D283FE2451A24A69F98C06ABF4CAEFBF0EE37081AEA872120BDC3E2BD2E3B2DE7A1B46EEBF52FB30"
    "3C96783647456F9767ADE48259A2558912C7EC15AFC6EAD8C58D79DE2A65A12D208AEAB7847269841604C4560396A105E41D"
    "F63948ECA3B89F249DC8A3B521DD835B6E741B6C1380FFAF25366CD097F14F453F54B8061BD45879C89931BF36172FA4E8EF"
    "D9BA0DCAE1DB58FD1B9346FA324A2EE4061D4D5555FEED3FC17DBA4EDC6F09625FE76B810EBD3A17B6A018095767B873F637"
    "14316260D0DD";

const std::string keyText = "000102030405060708090A0B0C0D0E0F";

Bytes unhex(std::string_view text) {
    Bytes bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

std::string wire(std::string_view hex) {
    const Bytes bytes = unhex(hex);
    return {bytes.begin(), bytes.end()};
}

SessionKey key() {
    SessionKey key{};
    std::ranges::copy(unhex(keyText), key.begin());
    return key;
}

// What the host finds in a cryptogram.
Bytes decipher(const Bytes& cryptogram, const std::string& exponent) {
    const auto number = [](const Bytes& bytes) {
        return std::unique_ptr<BIGNUM, decltype(&BN_free)>(
            BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr), BN_free);
    };
    const std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)> context(BN_CTX_new(), BN_CTX_free);
    const auto block = number(cryptogram);
    BN_mod_exp(block.get(), block.get(), number(unhex(exponent)).get(), number(unhex(modulus)).get(), context.get());
    Bytes bytes(256);
    BN_bn2binpad(block.get(), bytes.data(), 256);
    return bytes;
}

void expect_block(const Bytes& block, const Bytes& sessionKey) {
    EXPECT_EQ(block[0], 0x00);
    EXPECT_EQ(block[1], 0x02);
    EXPECT_EQ(std::count(block.begin() + 2, block.begin() + 239, 0), 0);
    EXPECT_EQ(block[239], 0x00);
    EXPECT_EQ(Bytes(block.begin() + 240, block.end()), sessionKey);
}

class SessionTest : public PinPadTest {
protected:
    Bytes open(const std::string& exponent, const std::string& crc) {
        host_->send("\x16OPN5230256" + modulus + "3" + exponent + "\x17" + crc);
        expect(ack + "\x16OPN000515256");
        const std::string cryptogram = host_->receive(512);
        EXPECT_EQ(host_->receive(3).substr(0, 1), "\x17");
        return unhex(cryptogram);
    }

    void open() {
        play({.sessionKey = key()});
        static_cast<void>(open("010001", "\x19\x10"));
    }
};

TEST_F(SessionTest, GivesTheKeyToWhoeverHasThePrivateOne) {
    play({.sessionKey = key()});
    expect_block(decipher(open("010001", "\x19\x10"), privateExponent), unhex(keyText));
    expect_block(decipher(open("300001", "\x84\x32"), privateExponentOf300001), unhex(keyText));
    expect_findings({});
}

TEST(SecureChannel, DrawsAKeyEachTimeAndKeepsLeadingZerosOfTheCryptogram) {
    SecureChannel channel(std::nullopt);
    std::vector<Bytes> keys;
    for (const int first : {0x00, 0x30}) {
        Bytes cryptogram;
        do { cryptogram = channel.open({unhex(modulus), unhex("010001")}); } while (cryptogram.front() != first);
        ASSERT_EQ(cryptogram.size(), 256U);
        const Bytes block = decipher(cryptogram, privateExponent);
        keys.emplace_back(block.end() - 16, block.end());
        expect_block(block, keys.back());
    }
    EXPECT_NE(keys[0], keys[1]);
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
    EXPECT_EQ(words[3], "enciphered GIN device information: \"04\"");
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
    const std::string tail = modulus.substr(1);
    const std::vector<std::array<std::string, 3>> cases{
        {"1256" + modulus + "3010001", "\x8D\x23", "OPN: OPN_OPMODE: 1 instead of 0"},
        {"0255" + modulus + "3010001", "\x72\x74", "OPN: OPN_MODLEN: 255 instead of 256"},
        {"0256" + modulus + "1303003", "\x83\x24", "OPN: OPN_EXPLEN: 1 instead of 3"},
        {"0256" + modulus + "3010000", "\x2A\x21", "OPN: an even number in the public key"},
        {"0256" + modulus.substr(0, 511) + "23010001", "\x34\x54", "OPN: an even number in the public key"},
        {"02567" + tail + "3010001", "\x48\x31", "OPN: OPN_MOD: less than 2048 bits"},
        {"0256d" + tail + "3010001", "\x65\xC4", "OPN: OPN_MOD: 0x64 is no hexadecimal digit"},
        {"0256" + modulus + "30100010", "\x70\xA0", "OPN: 1 bytes too many"},
    };
    play();
    for (const auto& [body, crc, finding] : cases) {
        exchange("\x16OPN" + std::to_string(body.size()) + body + "\x17" + crc, ack + "\x16OPN011\x17s_");
        EXPECT_EQ(pinPad_->findings().back(), (Finding{Kind::layout, finding}));
    }
    exchange(wire("161263C0C4B71B719740552D8D75454C59E01708B1"), ack + "\x16" + "ERR003\x17\xD5\x72");
}

TEST_F(PinPadTest, ShowsTheMessageOfAClose) {
    Device device;
    device.media.store("LOGO", {});
    play({.device = device});
    exchange("\x16" "CLO032BYE                             \x17\x1A\x62", ack + "\x16" "CLO000\x17\x9E\x03");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "BYE"}));
    exchange("\x16" "CLX021\x00\x1E\x00\x08LOGO    \x00\x1B\x00\x05"s + "A\rB C\x17\xC0\xD4",
             ack + "\x16" "CLX000\x17\xFD\x8D");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.text = "A\rB C", .media = "LOGO"}));
}

}  // namespace

}  // namespace quorvel::sim
