// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <semaphore>
#include <set>

#include "simulator/keys/secure_channel.h"
#include "tests/simulator/fixture.h"
#include "tests/simulator/host_key.h"
#include "wire/hex.h"

using namespace quorvel::sim;

namespace {

const std::string kModulus(512, 'F');

std::string wire(std::string_view hex) {
    const Bytes bytes = from_hex(hex);
    return {bytes.begin(), bytes.end()};
}

class SessionTest : public PinPadTest {
protected:
    void open() {
        play({.sessionKey = kSessionKey});
        EXPECT_TRUE(ask(kOpenSession).starts_with("OPN000515256"));
    }

    // Frames in hexadecimal.
    void converse(const std::string& sent, const std::string& due) { exchange(wire(sent), kAck + wire(due)); }

    // What is refused plainly.
    void expect_error(const std::string& sent, const char* error, const Finding& finding) {
        exchange(wire(sent), kAck + frame(error));
        expect_findings({finding});
    }

    // By what is no command.
    void expect_open() {
        converse("161204A0FF0251D9DA58D7D3504E9088CD621785D4", "161260822365E74C1F13339B4AAD4A98444FBE17DA92");
        expect_findings({{Kind::kUnsupported, "there is no command \"XYZ\""}});
    }

    // GIN 04.
    const std::string gin_ = "161263C0C4B71B719740552D8D75454C59E01708B1";
    const Finding noSession_{Kind::kSequence, "an encrypted frame without a session"};
};

TEST(SecureChannel, DrawsAKeyEachTimeAndKeepsLeadingZerosOfTheCryptogram) {
    const HostKey host;
    Random random;
    SecureChannel channel(std::nullopt);
    std::set<std::string> keys;
    for (const int first : {0x00, 0x30}) {
        Bytes cryptogram;
        do {
            cryptogram = channel.open({to_bytes(host.modulus()), {1, 0, 1}}, random);
        } while (cryptogram.front() != first);
        ASSERT_EQ(cryptogram.size(), 256U);
        keys.insert(host.open_padded({reinterpret_cast<const char*>(cryptogram.data()), cryptogram.size()}));
        EXPECT_EQ(keys.rbegin()->size(), 16U);
    }
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(SessionTest, TravelsEncipheredAndShowsItsKeyNowhere) {
    open();
    converse(gin_,
             "16123A43E1B09E2B470F4F054B9AD7E435786B78C384F623DA4A0E89E791725EF708CEBD1E625738B5FFF3DC4E46671F766F75"
             "7CF636CE1D531D53AC5B3CFC1498B9170CA5");
    // Twelve bytes and the head fill a block: another one follows.
    converse("1612939936B425C89CCC88D75E3BB37AAF5D7537EAE4B0420730AF4DD0015000228C178162",
             "1612641CAA936ACE133677A7EFF24EB655E96328A578B2BEB5183DF5F41534BDBF2C9D17F269");
    expect_open();
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
    EXPECT_EQ(all.find("000102030405060708090A0B0C0D0E0F"), std::string::npos);
    pinPad_->inject({.kind = "bad-cryptogram"});
    converse("1612939936B425C89CCC88D75E3BB37AAF5D7537EAE4B0420730AF4DD0015000228C178162",
             "1612651CAA936ACE133677A7EFF24EB655E96328A578B2BEB5183DF5F41534BDBF2C9D177FB5");
}

TEST_F(SessionTest, RefusesFramesThatAreNotSealedAsTheyMustBe) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"16121707C7", "0 bytes are no whole blocks"},
        {"161263C0C4B71B719740552D8D75454C591710F2", "15 bytes are no whole blocks"},
        {"161261FE650BB3B3BB0000DA07E555F775B817D15F", "DATALEN is 13, 12 bytes are there"},
        {"16124BE1E2018B9C21842A2ADAD3EF3E462317869C", "bad DATACRC: 0xD5DA received, 0xD5DB due"},
        {"161263C0C4B71B719740552D8D75454C59E0C6D83D78A8C32E942C0A701F58CD9F9E17DFBF", "20 bytes of padding, 4 due"},
        {"1612835D8AD82363A7E0C38750140D4AA17817842F", "0 bytes of padding, 16 due"},
        {"1612ABD3A633F2275B5436F86C6CBF847A4717BBD1", "a byte of the padding is not zero"},
    };
    open();
    for (const auto& [sent, finding] : cases) {
        expect_error(sent, "ERR009", {Kind::kLayout, "an encrypted frame: " + finding});
    }
    expect_error("16121C674E5AA0F28AA10FB7D8DAD8A62CD717291D", "ERR009", {Kind::kSequence, "an enciphered OPN"});
    expect_error("1647494E303032303417220E", "ERR009",
                 {Kind::kSequence, "a plain command inside an encrypted session"});
    // It goes on all the same, also when it is opened plainly.
    call("OPN", "OPN000");
    expect_open();
}

// Even when the command is refused: the host has dropped its key before it knows.
TEST_F(SessionTest, EndsWithACloseThatIsAnsweredPlainly) {
    for (const auto& [close, answer] : {
             std::pair("16124D1068AD97E8779FA16448D2AC874E180E28D1EC5B2E1FCFB0CFD97D515D4D6A8A5F29DD8F13363C42EB1333328"
                       "0197F809817ABD8",
                       "CLO000"),
             {"1612BA2224B678E4C7D6F51B205D3AF7C02F1794D9", "CLX000"},
             {"16125E7BAC557602DF133792414254402F1809176CA0", "CLX011"},
         }) {
        open();
        exchange(wire(close), kAck + frame(answer));
        if (answer == "CLX011"s) { expect_findings({{Kind::kLayout, "CLX: CMD_LEN1: a block without parameters"}}); }
        expect_error(gin_, "ERR003", noSession_);
        call("OPN", "OPN000");
    }
}

TEST_F(SessionTest, IsRefusedForAPublicKeyOutOfShape) {
    play();
    refuse("011", Kind::kLayout,
           {{"OPN5231256" + kModulus + "3010001", "OPN: OPN_OPMODE: 1 instead of 0"},
            {"OPN5230255" + kModulus + "3010001", "OPN: OPN_MODLEN: 255 instead of 256"},
            {"OPN5230256" + kModulus + "1303003", "OPN: OPN_EXPLEN: 1 instead of 3"},
            {"OPN5230256" + kModulus + "3010000", "OPN: an even number in the public key"},
            {"OPN5230256" + kModulus.substr(1) + "23010001", "OPN: an even number in the public key"},
            {"OPN52302567" + kModulus.substr(1) + "3010001", "OPN: OPN_MOD: less than 2048 bits"},
            {"OPN5230256d" + kModulus.substr(1) + "3010001", "OPN: OPN_MOD: 0x64 is no hexadecimal digit"},
            {"OPN5240256" + kModulus + "30100010", "OPN: 1 bytes too many"}});
    expect_error(gin_, "ERR003", noSession_);
}

// What a host does with its session and the line, and what the PIN pad has to say to that.
class StrictTest : public PinPadTest {
protected:
    void SetUp() override {
        sessions_ = Sessions::kStrict;
        play({.device = loaded_device(),
              .listeners = {.traffic = {}, .finding = [this](const Finding&) { found_.release(); }},
              .returned = [this](const std::string&) { returned_.release(); }});
    }

    // The line is closed, and opened anew once all of this is found.
    void close_line(const std::vector<std::string>& findings) {
        host_.reset();
        for (const std::string& due : findings) {
            EXPECT_TRUE(found_.try_acquire_for(std::chrono::seconds(20))) << due;
        }
        host_.emplace(pinPad_->path());
        exchange(kCan, kEot);
        exchange(kCan, kEot);
        expect_found(findings);
    }
    void expect_found(const std::vector<std::string>& findings) {
        std::vector<Finding> due;
        due.reserve(findings.size());
        for (const std::string& text : findings) { due.push_back({Kind::kSequence, text}); }
        expect_findings(due);
    }
    void read_chip() {
        pinPad_->when("GCR", inserted("visa-chip"));
        EXPECT_EQ(ask("GCR").substr(0, 6), "GCR000");
    }

    const std::string clo_ = "CLO032" + padded("BYE", 32);
    const std::string noClo_ = "the line was closed without CLO: the session is still open";
    const std::string rmc_ = " with a card in the reader: nobody asked for it to be taken out (RMC)";

    std::counting_semaphore<> found_{0};
    std::counting_semaphore<> returned_{0};
};

TEST_F(StrictTest, NothingIsDoneOutsideASession) {
    const auto outside = [&] {
        refuse("ERR010", Kind::kSequence,
               {{"GIN00200", "GIN before OPN: there is no session"}, {"GKY", "GKY before OPN: there is no session"}});
        refuse("ERR010", Kind::kUnsupported, {{"XYZ", "there is no command \"XYZ\""}});
    };
    outside();
    call(clo_, "CLO000");
    EXPECT_EQ(pinPad_->screen().text, "BYE");
    call("CLX", "CLX000");
    EXPECT_EQ(pinPad_->screen().text, "WELCOME");
    refuse("011", Kind::kLayout, {{"OPN0011", "OPN: OPN_OPMODE: 1 instead of 0"}});
    outside();
    for (const std::string open : {"OPN", kOpenSession.c_str()}) {
        EXPECT_EQ(ask(open).substr(0, 6), "OPN000");
        if (open == "OPN") { call("GIN00204", "GIN000042ACQUIRER 04         001.00 2601010001A0000"); }
        pinPad_->hang_up(std::chrono::milliseconds(1));
        EXPECT_TRUE(returned_.try_acquire_for(std::chrono::seconds(20)));
        host_.emplace(pinPad_->path());
        outside();
    }
    call("OPN", "OPN000");
    call(clo_, "CLO000");
    outside();
}

TEST_F(StrictTest, OutlivesTheLineAndACommandThatWaitsDoesNot) {
    close_line({});
    call("OPN", "OPN000");
    exchange(frame("GKY"), kAck);
    // Somebody else who looks at the port in between is not the host.
    { const Host other(pinPad_->path()); }
    pinPad_->press(Key::kF1);
    expect(frame("GKY004"));
    exchange(frame("GKY"), kAck);
    close_line({"the line was closed while GKY waited", noClo_});
    EXPECT_EQ(pinPad_->board().state().waiting, "");
    call("DSP032" + padded("", 32), "DSP000");
    close_line({noClo_});
    call(clo_, "CLO000");
    close_line({});
}

TEST_F(StrictTest, NoCardIsLeftInside) {
    for (const bool byLine : {false, true}) {
        call("OPN", "OPN000");
        read_chip();
        if (byLine) { close_line({"the line was closed" + rmc_, noClo_}); }
        call(clo_, "CLO000");
        if (!byLine) { expect_found({"the session was closed" + rmc_}); }
        pinPad_->remove();
    }
    // One that the cardholder does not take, and one that no host knows of.
    for (const std::string& asks : {"RMC032" + padded("", 32), "CKE003001"s}) {
        call("OPN", "OPN000");
        read_chip();
        begin(Gestures().notify("SEEN"), asks, "NTM000004SEEN");
        if (asks.starts_with("RMC")) { EXPECT_EQ(pinPad_->screen().text, "REMOVE THE CARD"); }
        exchange(kCan, kEot);
        call(clo_, "CLO000");
    }
    pinPad_->insert(card("visa-chip"));
    call("OPN", "OPN000");
    call(clo_, "CLO000");
    close_line({});
}

}  // namespace
