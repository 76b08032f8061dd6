// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fstream>
#include <sys/stat.h>
#include <thread>

#include "simulator/recording/comparison.h"
#include "simulator/recording/recorder.h"
#include "simulator/recording/replayer.h"
#include "simulator/recording/scenario_maker.h"
#include "simulator/recording/stand_in.h"
#include "simulator/scenario/performance.h"
#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"
#include "tests/support/elapsed.h"
#include "wire/hex.h"

using namespace std::chrono_literals;
using namespace quorvel::sim;

namespace {

const std::string kFirst = "quorvel-recording 1\n";
using Lines = std::vector<std::string>;

std::string file_of(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(RecordingFile, SaysWhatIsWrongAndWhere) {
    for (const auto& [text, due] : {
             std::pair(""s, R"(line 1: this is not "quorvel-recording 1")"s),
             {"quorvel-recording 2\n", "line 1: this is not \"quorvel-recording 1\""},
             {kFirst + "sead 1\n", "line 2: \"sead\" is no setting, and no time either"},
             {kFirst + "\n1.5 > can\n", "line 3: \"1.5\" is no time like 12.345678"},
             {kFirst + "1234567890.000000 > can\n", "line 2: \"1234567890.000000\" is no time like 12.345678"},
             {kFirst + "1.000000 = can\n", "line 2: \"=\" is none of > < * !"},
             {kFirst + "1.000000 > ack\n", R"(line 2: there is no kind "ack" behind ">")"},
             {kFirst + "1.000000 > can GKY\n", "line 2: \"GKY\" has no place in it"},
             {kFirst + "1.000000 > frame 474B5\n", "line 2: an odd number of hexadecimal digits"},
             {kFirst + "1.000000 > frame 474B replaced= word\n", "line 2: \"word\" has no place in it"},
             {kFirst + "# all is well\nseed 7\n1.000000 > frame 474B59 # GKY\n1.000001 < fra", ""},
         }) {
        EXPECT_EQ(thrown([&, &bad = text] { static_cast<void>(Recording::parse(bad)); }), due) << text;
    }
}

TEST(RecordingFile, IsAsTheGuideHasIt) {
    using Kind = Finding::Kind;
    const std::string guide = file_of(QUORVEL_DOCS "/recording.md");
    const size_t begin = guide.find(kFirst);
    const Recording shown = Recording::parse(guide.substr(begin, guide.find("```", begin) - begin));
    ASSERT_EQ(shown.events.size(), 5U);
    EXPECT_EQ(to_line(shown.events[2]), "1.009444 < frame 4F504E303030 # OPN 000 OK");
    EXPECT_EQ(shown.events[4].text, "there is no command \"XYZ\"");
    for (const Kind kind :
         {Kind::kFraming, Kind::kLayout, Kind::kSequence, Kind::kMoney, Kind::kUnsupported, Kind::kInternal}) {
        const std::string line = fmt::format("1.000000 ! {} what it is", kind_name(kind));
        EXPECT_EQ(to_line(Recording::parse(kFirst + line + "\n").events.at(0)), line);
    }
    for (const std::string& name : changing_values()) { EXPECT_NE(guide.find(name), std::string::npos) << name; }
}

std::string request(const std::string& id, const std::string& body) {
    return fmt::format("{}{:03}{}", id, body.size(), body);
}
std::string response(const std::string& id, const std::string& body) { return request(id + "000", body); }
std::string param(const std::string& id, const std::string& value) {
    return id + std::string{static_cast<char>(value.size() >> 8), static_cast<char>(value.size())} + value;
}

TEST(StandIn, IsAsLongAndAsValidAsWhatItStandsInFor) {
    const std::string pan = "8052"_hex;
    const std::string emv = "8054"_hex;
    const std::string prompt = "0412" + padded("PIN", 32);
    const auto card = [](const std::string& track1, const std::string& track2, const std::string& track3,
                         const std::string& number, const std::string& holder) {
        return response("GCR", "00000300" + fmt::format("1{:02}", track1.size()) + padded(track1, 76) + "34"
                                   + padded(track2, 37) + fmt::format("{:03}", track3.size()) + padded(track3, 104)
                                   + "16" + padded(number, 19) + "00" + padded("", 16) + "101" + padded(holder, 26)
                                   + (holder == "SMITH/J" ? "281130" : "301231") + padded("", 29) + "840000");
    };
    for (const auto& [sender, packet, due, replaced] :
         std::initializer_list<std::tuple<Sender, std::string, std::string, std::string>>{
             {Sender::kHost, "GIN00200", "GIN00200", ""},
             {Sender::kPinPad, "GIN0", "GIN0", "rest"},
             {Sender::kPinPad, response("GCX", param(pan, "4000 0000 0000 0069")),
              response("GCX", param(pan, "4111 1111 1111 1111")), "PP_PAN"},
             {Sender::kPinPad,
              response("GCX", param(pan, "371449*****8431") + param("8055"_hex, "J") + param("805D"_hex, "281130")),
              response("GCX", param(pan, "378282*****0005") + param("8055"_hex, "C") + param("805D"_hex, "301231")),
              "PP_PAN,PP_CHNAME,PP_CARDEXP"},
             {Sender::kPinPad,
              response("GTK", param("8044"_hex, "B5105105105105100^SMITH/J^28072060042")
                                  + param("8045"_hex, "5105105105105100D28072060042000F"_hex)
                                  + param("8046"_hex, "015105105105105100D0428F"_hex)),
              response("GTK", param("8044"_hex, "B4111111111111111^CARDHOL^30122060000")
                                  + param("8045"_hex, "4111111111111111D30122060000000F"_hex)
                                  + param("8046"_hex, "014111111111111111D0000F"_hex)),
              "PP_TRACK1,PP_TRACK2,PP_TRACK3"},
             {Sender::kPinPad,
              response("GOX", param(emv, "5A08 4761739001010010 9F3601 08 5F2403 281130 DF0102 0147"_hex)
                                  + param("8057"_hex, "0123456789ABCDEF"_hex)),
              response("GOX", param(emv, "5A08 4111111111111111 9F3601 08 5F2403 301231 DF0102 0000"_hex)
                                  + param("8057"_hex, "0000000000000000"_hex)),
              "PP_EMVDATA/5A,PP_EMVDATA/5F24,PP_EMVDATA/DF01,PP_PINBLK"},
             // In two blocks.
             {Sender::kPinPad, response("GCX", param("805B"_hex, "VISA")) + request("", param(pan, "4000000000006")),
              response("GCX", param("805B"_hex, "VISA")) + request("", param(pan, "4222222222222")), "PP_PAN"},
             {Sender::kPinPad, response("GCD", param("804D"_hex, "7391")), response("GCD", param("804D"_hex, "0001")),
              "PP_VALUE"},
             {Sender::kPinPad, response("CHP", "0059000AB1234"), response("CHP", "0050000000000"), "rest"},
             {Sender::kPinPad,
              card("B5105105105105100^SMITH/J^28072060042", "5105105105105100=28072060042000000",
                   "015105105105105100=0428", "5105105105105100", "SMITH/J"),
              card("B4111111111111111^CARDHOL^30122060000", "4111111111111111=30122060000000000",
                   "014111111111111111=0000", "4111111111111111", "CARDHOLDER/TEST"),
              "GCR_CARD"},
             {Sender::kHost,
              request("GPN", "200" + std::string(32, '7') + "13" + padded("4000000000006", 19) + "1" + prompt),
              request("GPN", "200" + std::string(32, '0') + "13" + padded("4222222222222", 19) + "1" + prompt),
              "GPN_WKENC,GPN_PAN"},
             {Sender::kHost, "\x01\x02\x03\x04", "XXX0", "id,rest"},
         }) {
        const StandIn made = stand_in(sender, to_bytes(packet));
        EXPECT_EQ(std::string(made.packet.begin(), made.packet.end()), due) << packet;
        EXPECT_EQ(fmt::format("{}", fmt::join(made.replaced, ",")), replaced);
    }
}

TEST(Comparison, NamesWhatDiffers) {
    const auto gcx = [](const std::string& params) { return request("GCX", params); };
    const std::string amount = param("0013"_hex, "000000001000");
    const std::string date = param("0015"_hex, "261122");
    const std::string wanted = param("0010"_hex, "04");
    for (const auto& [recorded, came, due] : {
             std::tuple(gcx(date + amount), gcx(param("0015"_hex, "270101") + amount), ""s),
             {gcx(amount), gcx(amount + date), ""},
             {gcx(date + amount), gcx(date + param("0013"_hex, "000000009900")),
              R"(GCX: expected SPE_AMOUNT="000000001000", got SPE_AMOUNT="000000009900")"},
             {gcx(amount + wanted), gcx(amount), R"(GCX: expected SPE_ACQREF="04", which did not come)"},
             {gcx(amount), gcx(amount + wanted), R"(GCX: got SPE_ACQREF="04", where none was)"},
             {gcx(amount + wanted), gcx(wanted + amount),
              R"(GCX: expected SPE_AMOUNT="000000001000", got SPE_ACQREF="04" there)"},
             {gcx(param("0005"_hex, "9F0201019A03261122"_hex)), gcx(param("0005"_hex, "9F0201029A03270101"_hex)),
              "GCX: SPE_EMVDATA: expected 9F02=01, got 9F02=02"},
             {"GIN00200", "GIX", R"(expected GIN device information: GIN_ACQIDX="00", got GIX device information)"},
             {"DWK0041301", "DWK0041302", "DWK: expected 3 bytes withheld, got 3 bytes withheld"},
         }) {
        EXPECT_EQ(difference(to_bytes(recorded), to_bytes(came), changing_values()), due);
    }
    EXPECT_EQ(thrown<std::invalid_argument>([] { require_known({"SPE_AMOUNT", "GOC_AMOUNT", "9F02"}); }), "");
    for (const char* name : {"SPE_AMONT", "PP", "", "FFFFFFFFF", "9F0202"}) {
        EXPECT_EQ(thrown<std::invalid_argument>([&] { require_known({name}); }), "no request has a \""s + name + "\"");
    }
}

// A number of two or three digits.
const std::string kGcd = "GCD021" + "000B 0002 0007 000D 0001 02 000E 0001 03 000C 0001 3C"_hex;

class RecorderTest : public PinPadTest {
protected:
    void record(Recorder::Values values, PinPad::Options options, const std::string& path) {
        recorder_.emplace(path, values, Cards::standard(), [this](const std::string& what) { told_ += what; });
        recorder_->listen(options);
        play(std::move(options));
    }

    // Without their times.
    Lines lines() {
        exchange(kCan, kEot);
        pinPad_->stop();
        pinPad_.reset();
        Lines lines;
        std::ifstream file(path_);
        for (std::string line; std::getline(file, line);) {
            const bool timed = std::isdigit(static_cast<unsigned char>(line.front())) != 0;
            lines.push_back(timed ? line.substr(line.find(' ') + 1) : line);
        }
        return lines;
    }

    TempDir folder_;
    const std::string path_ = folder_ / "recorded";
    std::string told_;
    std::optional<Recorder> recorder_;
};

TEST_F(RecorderTest, WritesDownWhatHappens) {
    folder_.file("recorded", "of an earlier session");
    record(Recorder::Values::kWithheld,
           {.second = 10ms, .faults = {{.kind = "bad-crc", .chance = 1, .times = 1}}, .seed = 7}, path_);
    exchange(kOpn, kAck + "\x16OPN000\x17\x77\x5F");
    exchange(kNak, kOpnDone);
    call("XYZ", "ERR010");
    pinPad_->when("GKY", Gestures().notify("SOON").press(digit('1')).press(Key::kF1));
    exchange(frame("GKY"), kAck + frame(response("NTM", "SOON")) + frame("GKY004"));
    call_while(inserted("visa-chip").type("12").remove(), kGcd, "GCD000006" + "804D 0002"_hex + "12");
    host_->send("\x16GIN\x17\x01\x02");
    expect(kNak);
    expect_findings({{Kind::kUnsupported, "there is no command \"XYZ\""},
                     {Kind::kFraming, "bad CRC: 0x0102 received, 0xF098 due"}});
    host_.reset();
    while (file_of(path_).find("* left") == std::string::npos) { std::this_thread::yield(); }
    host_.emplace(pinPad_->path());
    EXPECT_EQ(
        lines(),
        (Lines{"quorvel-recording 1",
               "values withheld",
               "seed 7",
               "second 10",
               "> frame 4F504E # OPN open a session",
               "< ack # ACK",
               R"(* fault {"command":"OPN","fault":"bad-crc","times":1})",
               "< frame 4F504E303030 # OPN 000 OK (fault: bad-crc)",
               "> nak # NAK",
               "< frame 4F504E303030 # OPN 000 OK",
               "> frame 58595A # \"XYZ\"",
               "< ack # ACK",
               "! unsupported there is no command \"XYZ\"",
               "< frame 455252303130 # ERR 010 INVCALL",
               "> frame 474B59 # GKY wait for a key",
               "< ack # ACK",
               "* notify SOON",
               "< frame 4E544D303030303034534F4F4E # NTM 000 OK: NTM_MSG=\"SOON\"",
               "* press 1",
               "* press f1",
               "< frame 474B59303034 # GKY 004 F1",
               "> frame 474344303231000B00020007000D000102000E000103000C00013C # GCD ask for a number: SPE_MSGIDX=7, "s
                   + "SPE_MINDIG=2, SPE_MAXDIG=3, SPE_TIMEOUT=60",
               "< ack # ACK",
               "* insert visa-chip",
               "* press digit",
               "* press digit",
               "* press enter",
               "< frame 474344303030303036804D00023031 replaced=PP_VALUE # GCD 000 OK: PP_VALUE: 2 bytes withheld",
               "* remove",
               "> bytes 00000000000000 replaced=all # damaged frame: bad CRC: 0x0102 received, 0xF098 due",
               "! framing bad CRC: 0x0102 received, 0xF098 due",
               "< nak # NAK",
               "* left",
               "> can # CAN",
               "< eot # EOT"}));
    EXPECT_EQ(told_, "");
    struct stat about = {};
    ASSERT_EQ(::stat(path_.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0600U);
}

TEST_F(RecorderTest, KeepsWhatIsPrivateOnlyWhenAsked) {
    record(Recorder::Values::kKept, {}, path_);
    call_while(Gestures().type("12"), kGcd, "GCD000006" + "804D 0002"_hex + "12");
    const Lines all = lines();
    EXPECT_EQ(all.at(1), "values kept");
    EXPECT_EQ(all.at(5), "* press 1");
    EXPECT_EQ(all.at(8).substr(0, 38), "< frame 474344303030303036804D00023132");
}

TEST_F(RecorderTest, GoesOnWhenTheDiskIsFull) {
    record(Recorder::Values::kWithheld, {}, "/dev/full");
    call("OPN", "OPN000");
    retire();
    EXPECT_EQ(told_, "nothing more is recorded in /dev/full: No space left on device");
    EXPECT_THROW(Recorder(folder_ / "no/where", Recorder::Values::kKept, {}, {}), std::system_error);
}

// Events a hundredth of a second apart: ">GKY", "<GKY013", or any other as it stands.
std::string recorded(const Lines& events) {
    std::string text = kFirst;
    for (size_t i = 0; i < events.size(); ++i) {
        const std::string& event = events[i];
        const bool frame = event[1] != ' ';
        const std::string packet =
            fmt::format("{} frame {}", event[0], quorvel::wire::to_hex(to_bytes(event.substr(1))));
        text += fmt::format("0.{:02}0000 {}\n", i, frame ? packet : event);
    }
    return text;
}

const Lines kSession{">OPN",
                     "<OPN000",
                     ">GIN00202",
                     "< ack",
                     "<GIN000003ABC",
                     ">GKY",
                     "< ack",
                     "<NTM000004SOON",
                     "* press f1",
                     "<GKY004",
                     ">DSP032" + std::string(32, 'X'),
                     "<DSP000",
                     "* left"};

class ReplayTest : public testing::Test {
protected:
    using Exchanges = std::vector<std::pair<std::string, std::string>>;

    void replay(const Lines& events, Replayer::Options options = {}) {
        options.differs = [this](const std::string& how) { differences_.push_back(how); };
        replayer_.emplace(Recording::parse(recorded(events)), std::move(options));
        thread_ = std::thread([this] { replayer_->run(); });
        host_.emplace(replayer_->path());
    }
    void exchange(const std::string& sent, const std::string& due) {
        host_->send(sent);
        EXPECT_EQ(host_->receive(due.size()), due) << sent;
    }
    // What differed until the host left.
    Lines left() {
        host_.reset();
        thread_.join();
        EXPECT_EQ(replayer_->is_same(), differences_.empty());
        replayer_.reset();
        return std::exchange(differences_, {});
    }

    std::optional<Replayer> replayer_;
    std::optional<Host> host_;

private:
    std::thread thread_;
    Lines differences_;
};

TEST_F(ReplayTest, AnswersAsRecordedAndTellsWhatDiffers) {
    const std::string gky = "NTM000004SOON|GKY004";
    const std::string dsp = "DSP032" + std::string(32, 'X');
    const std::string other = "DSP032" + std::string(32, 'Y');
    struct Case {
        Exchanges asked;
        Lines due;
    };
    for (const auto& [asked, due] : {
             Case{{{"OPN", "OPN000"}, {"GIN00202", "GIN000003ABC"}, {"GKY", gky}, {dsp, "DSP000"}}, {}},
             {{{"OPN", "OPN000"}, {"GIN00200", "GIN000003ABC"}, {"GKY", gky}, {other, "DSP000"}, {"GKY", "ERR010"}},
              {R"(line 4: GIN: expected GIN_ACQIDX="02", got GIN_ACQIDX="00")",
               "line 12: DSP: expected DSP_MSG=\"" + std::string(32, 'X') + "\", got DSP_MSG=\"" + std::string(32, 'Y')
                   + "\"",
               "nothing more was asked, got GKY wait for a key"}},
             {{{"XYZ", "ERR010"}, {"OPN", "OPN000"}, {"GKY", gky}},
              {"line 2: expected OPN open a session, got \"XYZ\"",
               "line 4: expected GIN device information: GIN_ACQIDX=\"02\", got GKY wait for a key",
               "line 12: never asked: DSP"}},
             {{{other, "DSP000"}},
              {"line 2: expected OPN open a session, got DSP show a message: DSP_MSG=\"" + std::string(32, 'Y')
               + "\""}},
         }) {
        replay(kSession);
        for (const auto& [request, answers] : asked) {
            std::string bytes = kAck;
            for (size_t at = 0; at <= answers.size(); at = std::min(answers.find('|', at), answers.size()) + 1) {
                bytes += frame(answers.substr(at, answers.find('|', at) - at));
            }
            exchange(frame(request), bytes);
        }
        EXPECT_EQ(left(), due);
    }
}

TEST_F(ReplayTest, LetsFaultsStrikeAsTheyDid) {
    replay({R"(* fault {"fault":"bad-crc","command":"OPN"})", ">OPN", "< ack", R"(* fault {"fault":"bad-crc"})",
            "<OPN000", "> nak", "<OPN000", ">GKY", R"(* fault {"fault":"nak"})", "< ack", ">GKY", "< ack",
            R"(* fault {"fault":"status","status":13,"before":true})", "<GKY013", "> bytes 1601", "< nak"});
    exchange(kCan + kOpn, kEot + kAck + "\x16OPN000\x17\x77\x5F");
    exchange(kNak, kOpnDone);
    exchange(frame("GKY"), kNak);
    exchange("\x16GKY\x17\x01\x02", kNak);
    exchange(frame("GKY"), kAck + frame("GKY013"));
    EXPECT_EQ(left(), Lines{});
    replay({">OPN", "< ack", R"(* fault {"fault":"hang-up","ms":1})", "<OPN000", ">GKY", "<GKY013"});
    exchange(kOpn, kAck);
    EXPECT_TRUE(host_->is_left());
    replayer_->request_stop();
    EXPECT_EQ(left(), Lines{"line 6: never asked: GKY"});
    // A repetition more than there were is sound, and what was left of an answer's is not for the next.
    const std::string bad = R"(* fault {"fault":"bad-crc"})";
    const std::string lost = R"(* fault {"fault":"no-answer"})";
    replay({">OPN",    "< ack", bad,     "<OPN000", "> nak", lost, "<OPN000", "> nak", bad,     "<OPN000", "> nak",
            "<OPN000", ">OPN",  "< ack", "<OPN000", "> nak", bad,  "<OPN000", ">OPN",  "< ack", "<OPN000"});
    exchange(kOpn, kAck + "\x16OPN000\x17\x77\x5F");
    exchange(kNak, "");
    exchange(kNak, "\x16OPN000\x17\x77\x5F");
    exchange(kNak, kOpnDone);
    exchange(kNak, kOpnDone);
    exchange(kOpn, kAck + kOpnDone);
    exchange(kOpn, kAck + kOpnDone);
    exchange(kNak, kOpnDone);
    EXPECT_EQ(left(), Lines{});
    for (const auto& [event, due] : {std::pair("* fault {}", "line 2: no \"fault\""),
                                     {R"(* fault {"fault":"delay"})", "line 2: \"delay\" needs a time"}}) {
        EXPECT_EQ(thrown([&, &bad = event] { Replayer(Recording::parse(recorded({bad})), {}); }), due);
    }
    EXPECT_EQ(thrown([] {
                  Replayer(Recording::parse(recorded({">GKY", "<GKY"})), {});
              }),
              "line 3: this is no response");
}

TEST_F(ReplayTest, WaitsForAHostThatComesAgain) {
    replay({">OPN", "<OPN000", "* left", ">GKY", "<GKY004", "* left"});
    exchange(kOpn, kAck + kOpnDone);
    host_.emplace(replayer_->path());
    exchange(frame("GKY"), kAck + frame("GKY004"));
    EXPECT_EQ(left(), Lines{});
}

TEST_F(ReplayTest, TakesItsTimeWhenAsked) {
    for (const auto& [pace, least] : {std::pair(0.0, 0ms), {40.0, 1500ms}}) {
        replay({">GKY", "< ack", "* press f1", "* press f1", "<GKY004"}, {.pace = pace});
        const support::Elapsed elapsed;
        exchange(frame("GKY"), kAck + frame("GKY004"));
        EXPECT_TRUE(elapsed.between(least, least + 1400ms));
        EXPECT_EQ(left(), Lines{});
    }
    replay(kSession, {.pace = 1000});
    exchange(frame("OPN"), kAck);
    exchange(kCan, kEot);
    EXPECT_EQ(left(), Lines{"line 4: never asked: GIN, GKY, DSP"});
}

TEST_F(ReplayTest, KnowsASessionThatIsEncryptedFromOneThatIsNot) {
    replay({">OPN", "<OPN000", ">GKY", "<GKY004"});
    exchange(frame("OPN"), kAck + frame("OPN000"));
    exchange(support::encrypted_frame(std::string(16, 'X')), kAck + frame("ERR003"));
    exchange(frame("GKY"), kAck + frame("GKY004"));
    EXPECT_EQ(left(), Lines{"an encrypted frame came without a session"});
}

TEST(ScenarioFromRecording, SaysWhatWasDoneAndExpected) {
    const std::string text =
        scenario_from(Recording::parse(recorded({">GTS00203",
                                                 "<GTS000010TABLES0001",
                                                 R"(* fault {"fault":"delay","ms":5,"command":"GKY"})",
                                                 ">GKY",
                                                 "* insert mastercard-chip",
                                                 "* press 1",
                                                 "* press up",
                                                 "* press digit",
                                                 "* press digit",
                                                 "* press digit",
                                                 "* press digit",
                                                 "* press enter",
                                                 "<NTM000004SOON",
                                                 "<GKY000",
                                                 ">GKY",
                                                 "> can",
                                                 ">GIX006" + "000100028001"_hex,
                                                 R"(* fault {"fault":"status","status":42,"command":"GIX"})",
                                                 "<" + response("GIX", param("8001"_hex, "SER\"1")),
                                                 ">XYZ",
                                                 "! unsupported there is no command \"XYZ\"",
                                                 "<ERR010",
                                                 ">GCX016" + param("0013"_hex, "000000001000"),
                                                 "<" + response("GCX", param("8051"_hex, "030101")),
                                                 "* remove",
                                                 ">GTS00203",
                                                 "<GTS000010TABLES0001",
                                                 ">GTS00203",
                                                 "<GTS000010TABLES0001",
                                                 "* left",
                                                 "* left"})),
                      "A \"title\"");
    EXPECT_EQ(text, R"(title = "A \"title\""
description = "Made of a recording: leave out what does not matter."
ends = "done"

script = [
    { fault = "delay", command = "GKY", ms = 5 },
    { wait = "GKY" },
    { insert = "mastercard-chip" },
    { press = "1" },
    { press = "up" },
    { type = "1234" },
    { fault = "status", command = "GIX", status = 42 },
    { remove = true },
]

[device]
serial_number = "SER\"1"

[[tables]]
acquirer = 3
version = "TABLES0001"
records = [{ acquirer = 3, index = "01" }]

[[expect]]
command = "GTS"
status = "OK"

[[expect]]
command = "GKY"
status = "OK"

[[expect]]
command = "GKY"
status = "none"

[[expect]]
command = "GIX"
status = "ERRKEY"

[[expect]]
command = "GCX"
status = "OK"
with = ["SPE_AMOUNT=\"000000001000\""]

[[expect]]
command = "GTS"
status = "OK"
times = 2

[[finding]]
text = "there is no command \"XYZ\""
)");
    EXPECT_EQ(Scenario::from_toml("made.toml", text).expectations.size(), 6U);
}

}  // namespace
