// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <list>
#include <nlohmann/json.hpp>
#include <set>
#include <sys/stat.h>

#include "simulator/control/control_server.h"
#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

using nlohmann::json;

const std::string kDone = R"({"ok":true})";

std::string refused(const std::string& error) { return R"({"error":)" + json(error).dump() + R"(,"ok":false})"; }

// A virtual PIN pad with a host and a client of its control socket.
class ControlTest : public PinPadTest {
protected:
    ControlTest() {
        setenv("TZ", "UTC0", 1);
        tzset();
        play(PinPad::Options{.clock = standing_clock("2026-01-02T03:04:05Z")});
        control_.emplace(*pinPad_);
        server_.emplace(path_, *control_);
        client_.emplace(path_);
    }

    void TearDown() override {
        PinPadTest::TearDown();
        server_.reset();
    }

    void expect_answers(const std::vector<std::pair<std::string, std::string>>& cases) {
        for (const auto& [request, due] : cases) { EXPECT_EQ(client_->ask(request), due) << request; }
    }

    [[nodiscard]] json told(const std::string& verb) {
        return json::parse(client_->ask(R"({"do":")" + verb + R"("})"));
    }

    TempDir folder_;
    const std::string path_ = folder_ / "control";
    std::optional<Control> control_;
    std::optional<ControlServer> server_;
    std::optional<ControlClient> client_;
};

TEST_F(ControlTest, HasExamplesInTheGuideThatHold) {
    std::ifstream document(QUORVEL_DOCS "/control-socket.md");
    std::set<std::string> told;
    std::string request;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with("> ")) { request = line.substr(2); }
        if (!line.starts_with("< ")) { continue; }
        const std::string verb = json::parse(request).at("do");
        if (verb == "await" && !told.contains(verb)) { exchange(kOpn, kAck + kOpnDone); }
        // What the host does before an example that would otherwise have nothing to tell of.
        if (verb == "await" && !told.contains(verb)) { exchange(frame("GKY"), kAck); }
        if (verb == "findings") { exchange(frame("XYZ"), kAck + frame("ERR010")); }
        // Too many to spell.
        json due =
            verb == "cards" ? json{{"ok", true}, {"cards", control_->cards().names()}} : json::parse(line.substr(2));
        if (due.contains("port")) { due["port"] = pinPad_->path(); }
        EXPECT_EQ(json::parse(client_->ask(request)), due) << request;
        told.insert(verb);
    }
    const auto verbs = Control::verbs();
    EXPECT_EQ(told, std::set<std::string>(verbs.begin(), verbs.end()));
    server_.reset();
    retire();
}

TEST_F(ControlTest, RefusesWhatIsNoRequest) {
    expect_answers({
        {"{", refused("no JSON")},
        {"\xFF\xFE", refused("no JSON")},
        {"[]", refused("a request is an object")},
        {"{}", refused("no \"do\"")},
        {R"({"do":1})", refused("\"do\" is no text")},
        {R"({"do":"dance"})", refused("there is no \"dance\"")},
        {R"({"do":"press"})", refused("no \"key\"")},
        {R"({"do":"press","key":"any"})", refused("there is no key \"any\"")},
        {R"({"do":"press","key":"1","twice":true})", refused("\"twice\" has no place in it")},
        {R"({"do":"type","digits":"12x"})", refused("\"digits\" is not up to 32 digits")},
        {R"({"do":"choose","option":0})", refused("\"option\" is not from 1 to 99")},
        {R"({"do":"choose","option":18446744073709551615})", refused("\"option\" is not from 1 to 99")},
        {R"({"do":"choose","option":1.5})", refused("\"option\" is no whole number")},
        {R"({"do":"tap","card":"library"})", refused("there is no card \"library\"")},
        {R"({"do":"notify","text":""})", refused("\"text\" is not 1 to 32 characters of ASCII")},
        {R"({"do":"notify","text":"é"})", refused("\"text\" is not 1 to 32 characters of ASCII")},
        {R"({"do":"when","command":"XYZ","acts":[]})", refused("there is no command \"XYZ\"")},
        {R"({"do":"when","command":"GKY","acts":1})", refused("\"acts\" is no list")},
        {R"({"do":"when","command":"GKY","acts":[{"do":"stop"}]})",
         refused("\"stop\" is nothing that a cardholder does")},
        {R"({"do":"when","command":"GKY","acts":[{"do":"press","key":"f1"},{"do":"remove","in":3}]})",
         refused("\"in\" has no place in it")},
        {R"({"do":"await","ms":-1})", refused("\"ms\" is not from 0 to 86400000")},
        {R"({"do":"fault","fault":"delay"})", refused("\"delay\" needs a time")},
        {R"({"do":"fault","fault":"nak","chance":"high"})", refused("\"chance\" is no number")},
        {R"({"do":"keys","use":"both"})", refused(R"("use" is neither "pin" nor "data")")},
        {R"({"do":"decipher-pin","pan":"41","block":"12","ksn":""})",
         refused("\"block\" is not of 16 hexadecimal digits")},
        {R"({"do":"decipher-pin","pan":"41","block":"0011223344556677","ksn":"FFFF"})",
         refused("\"ksn\" is not of 20 hexadecimal digits")},
        {R"({"do":"decipher-pin","pan":"41","block":"0011223344556677","ksn":"00009876543210E00001"})",
         refused("there is no such key")},
        {R"({"do":"decipher-pin","pan":"4X","block":"0011223344556677","ksn":"FFFF9876543210E00001"})",
         refused("\"pan\" is no card number")},
        {R"({"do":"fault","fault":"status","before":1})", refused("\"before\" is neither true nor false")},
        {R"({"do":"traffic","last":1001})", refused("\"last\" is not from 1 to 1000")},
    });
    // None of it has left a trace.
    exchange(frame("GKY"), kAck);
    exchange(kCan, kEot);
    EXPECT_EQ(pinPad_->faults(), std::vector<Fault>{});
}

TEST_F(ControlTest, ShowsTheStateOfTheCommandThatWaits) {
    client_->send("{\"do\":\"await\"}\n");
    pinPad_->insert(card("visa-chip"));
    exchange(kOpn + frame("GKY"), kAck + kOpnDone + kAck);
    EXPECT_EQ(client_->line(), kDone);
    const json state{{"ok", true}, {"port", pinPad_->path()}, {"waiting", "GKY"}, {"session", "plain"}, {"card", true},
                     {"plans", 0}};
    EXPECT_EQ(told("state"), state);
    ask(kOpenSession);
    EXPECT_EQ(told("state").at("waiting"), nullptr);
    EXPECT_EQ(told("state").at("session"), "encrypted");
    EXPECT_EQ(told("findings").at("findings"),
              json::parse(R"([{"number":1,"time":"2026-01-02 03:04:05.000","kind":"sequence",)"
                          R"("text":"a command came while GKY waited"}])"));
    expect_answers({{R"({"do":"clear-findings"})", kDone}, {R"({"do":"findings"})", R"({"findings":[],"ok":true})"}});
}

TEST_F(ControlTest, NoticesACommandHoweverShortItWaits) {
    expect_answers(
        {{R"({"do":"when","command":"GKY","acts":[{"do":"notify","text":"HELLO"},{"do":"press","key":"f1"}]})",
          kDone}});
    ControlClient other(path_);
    client_->send("{\"do\":\"await\",\"command\":\"GKY\"}\n{\"do\":\"screen\"}\n");
    other.send("{\"do\":\"await\",\"command\":\"RMC\",\"ms\":1}\n");
    EXPECT_EQ(other.line(), refused("RMC did not wait in time"));
    exchange(frame("GKY"), kAck + frame("NTM000005HELLO") + frame("GKY004"));
    EXPECT_EQ(client_->line(), kDone);
    EXPECT_EQ(client_->line(), R"({"media":"","menu":[],"ok":true,"selected":0,"text":"WELCOME","typed":""})");
    call("DSP032" + padded("CART\xC3O", 32), "DSP000");
    EXPECT_EQ(told("screen").at("text"), "CARTÃO");
}

TEST_F(ControlTest, ServesSeveralClientsWhateverTheyDo) {
    ControlClient silent(path_);
    {
        ControlClient broken(path_);
        broken.send("{\"do\":\"await\"}\n{\"do\":");
    }
    ControlClient longWinded(path_);
    longWinded.send_what_goes(std::string(200000, 'x') + "\n" R"({"do":"remove"})" "\r\n\n");
    EXPECT_EQ(longWinded.line(), refused("more than 65536 bytes"));
    EXPECT_EQ(longWinded.line(), kDone);
    ControlClient halfClosed(path_);
    halfClosed.send("{\"do\":\"remove\"}\n{\"do\":\"await\",\"ms\":1}\n{\"do\":\"remove\"}");
    halfClosed.shut_down_sending();
    EXPECT_EQ(halfClosed.line(), kDone);
    EXPECT_EQ(halfClosed.line(), refused("a command did not wait in time"));
    EXPECT_EQ(halfClosed.line(), kDone);
    EXPECT_EQ(halfClosed.line(), "");
    // Whose answers nobody reads is not listened to for ever.
    ControlClient deaf(path_);
    std::string flood;
    for (int i = 0; i < 100000; ++i) { flood += "{\"do\":\"screen\"}\n"; }
    EXPECT_LT(deaf.send_what_goes(flood), flood.size());
    expect_answers({{R"({"do":"remove"})", kDone}});
    EXPECT_EQ(silent.ask(R"({"do":"remove"})"), kDone);
}

TEST_F(ControlTest, DropsWhoeverReadsNothing) {
    const ControlServer hasty(folder_ / "hasty", *control_, std::chrono::milliseconds(50));
    ControlClient deaf(folder_ / "hasty");
    // All of it fits on the way there, the answers do not fit on the way back.
    std::string flood;
    for (int i = 0; i < 1000; ++i) { flood += "{\"do\":\"cards\"}\n"; }
    deaf.send(flood);
    ControlClient other(folder_ / "hasty");
    EXPECT_EQ(other.ask(R"({"do":"remove"})"), kDone);
    call("OPN", "OPN000");
    EXPECT_TRUE(deaf.is_left());
    EXPECT_EQ(other.ask(R"({"do":"remove"})"), kDone);
}

TEST_F(ControlTest, TurnsAwayWhomItHasNoRoomFor) {
    std::list<ControlClient> others;
    for (int i = 1; i < 32; ++i) { others.emplace_back(path_); }
    EXPECT_EQ(others.back().ask(R"({"do":"remove"})"), kDone);
    ControlClient late(path_);
    EXPECT_EQ(late.line(), refused("32 clients are served, and no more"));
    EXPECT_EQ(late.line(), "");
    EXPECT_TRUE(late.is_left());
    others.pop_front();
    EXPECT_EQ(ControlClient(path_).ask(R"({"do":"remove"})"), kDone);
}

TEST_F(ControlTest, DoesWhatAClientAsksThatGoesAtOnce) {
    { ControlClient(path_).send(R"({"do":"when","command":"GKY","acts":[{"do":"press","key":"f2"}]})"); }
    // Clients are served in the order of their coming.
    EXPECT_EQ(ControlClient(path_).ask(R"({"do":"remove"})"), kDone);
    call("GKY", "GKY005");
}

// By each method, and with a serial number that counts on.
TEST_F(ControlTest, KnowsThePinThatLeftThePinPad) {
    for (const auto& [method, key, members] : {
             std::tuple("0", "3030303030303030B4CC3FD9D8D95214"s, R"("working":"B4CC3FD9D8D95214")"s),
             {"1", "3EB3B72576BBBE834F0B96AAA5A8B548", R"("working":"3eb3b72576bbbe834f0b96aaa5a8b548")"},
             {"2", "30303030303030303030303030303030", R"("strength":"des","ksn":"FFFF9876543210E00001")"},
             {"3", "30303030303030303030303030303030", R"("ksn":"FFFF9876543210E00001")"},
             {"3", "30303030303030303030303030303030", R"("ksn":"FFFF9876543210E00002")"},
         }) {
        pinPad_->when("GPN", Gestures().type("907654321"));
        const std::string answer =
            ask("GPN093"s + method + "00" + key + "16" + padded("4111111111111111", 19) + "1" + padded("0412PIN", 36));
        const std::string block = answer.substr(9, 16);
        expect_answers({{R"({"do":"decipher-pin","pan":"4111111111111111","block":")" + block + "\"," + members + "}",
                         R"({"ok":true,"pin":"907654321"})"}});
    }
    EXPECT_EQ(told("keys").at("keys").back().at("ksn"), "FFFF9876543210E00000");
    EXPECT_EQ(json::parse(client_->ask(R"({"do":"keys","use":"pin","strength":"tdes"})"))["keys"].back()["ksn"],
              "FFFF9876543210E00002");
}

TEST_F(ControlTest, InjectsFaults) {
    expect_answers({
        {R"({"do":"fault","fault":"wrong-id","command":"OPN"})", kDone},
        {R"({"do":"fault","fault":"status","status":42,"every":2})", kDone},
        {R"({"do":"fault","fault":"delay","ms":1,"chance":0.5,"times":3})", kDone},
        {R"({"do":"fault","fault":"status","status":10,"command":"CLX","before":true,"as-error":true})", kDone},
        {R"({"do":"faults"})",
         R"({"faults":[{"command":"OPN","fault":"wrong-id","times":1},{"every":2,"fault":"status","status":42},)"
         R"({"chance":0.5,"fault":"delay","ms":1,"times":3},)"
         R"({"as-error":true,"before":true,"command":"CLX","fault":"status","status":10,"times":1}],"ok":true})"},
    });
    for (const char* due : {"XXX000", "OPN000", "OPN042", "OPN000", "OPN042"}) { call("OPN", due); }
    expect_answers({{R"({"do":"clear-faults"})", kDone}, {R"({"do":"faults"})", R"({"faults":[],"ok":true})"}});
    call("OPN", "OPN000");
    expect_answers({{R"({"do":"traffic","last":1})",
                     R"({"ok":true,"traffic":[{"bytes":"16 4F 50 4E 30 30 30 17 77 5E","from":"pin-pad",)"
                     R"("time":"2026-01-02 03:04:05.000","words":"OPN 000 OK"}]})"}});
}

TEST_F(ControlTest, IsForItsUserAloneAndTakesThePlaceOnlyOfASocketThatNobodyServes) {
    struct stat status {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const auto fault = [&](const std::string& path) {
        return thrown([&] { const ControlServer second(path, *control_); });
    };
    EXPECT_EQ(fault(path_), path_ + " is in use");
    const std::string file = folder_.file("file", "kept");
    EXPECT_EQ(fault(file), file + " is there and no socket");
    EXPECT_EQ(std::filesystem::file_size(file), 4U);
    const std::string longest(200, 'x');
    EXPECT_EQ(fault(longest), "\"" + longest + "\" is no path for a socket: 1 to 107 bytes");
    const std::string stale = folder_ / "stale";
    const sockaddr_un address = socket_address(stale);
    const int left = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(left);
    EXPECT_EQ(fault(stale), "");
    EXPECT_FALSE(std::filesystem::exists(stale));
    expect_answers({{R"({"do":"remove"})", kDone}});
}

}  // namespace
