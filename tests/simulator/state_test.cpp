// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <nlohmann/json.hpp>

#include "simulator/control/control.h"
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

using nlohmann::json;

// What the PIN pad has and remembers, asked for and changed while it runs.
class StateTest : public PinPadTest {
protected:
    void play_controlled(PinPad::Options options = {}) {
        play(std::move(options));
        control_.emplace(*pinPad_);
    }

    json ask_for(const std::string& request) { return std::get<json>(control_->perform_line(request)); }
    json told(const std::string& verb, const std::string& member) {
        return ask_for(R"({"do":")" + verb + R"("})").at(member);
    }
    void done(const std::string& request) { EXPECT_EQ(ask_for(request), json({{"ok", true}})) << request; }
    void refused(const std::string& request, const std::string& error) {
        EXPECT_EQ(ask_for(request), json({{"ok", false}, {"error", error}})) << request;
    }

    void load_tables() {
        call("TLI01203V1        ", "TLI000");
        call(
            "TLR0750206010301"
            "07A000000003101000000000000000000001VISA CREDITO    "
            "01320301xyzzy",
            "TLR000");
        call("TLE", "TLE000");
    }

    std::optional<Control> control_;
};

TEST_F(StateTest, TellsOfTheSessionAndTheTables) {
    play_controlled();
    EXPECT_EQ(told("session", "session"), "none");
    EXPECT_EQ(told("session", "since"), nullptr);
    load_tables();
    EXPECT_EQ(told("session", "commands"), json({"TLI", "TLR", "TLE"}));
    EXPECT_EQ(told("tables", "versions"), json::parse(R"([{"acquirer":3,"version":"V1"}])"));
    EXPECT_EQ(told("tables", "records"),
              json::parse(R"([{"table":1,"acquirer":3,"index":"01","bytes":52,"aid":"A0000000031010","type":1,)"
                          R"("label":"VISA CREDITO"},{"table":2,"acquirer":3,"index":"01","bytes":5}])"));
    exchange(frame("4111"), kAck + frame("ERR010"));
    expect_findings({{Kind::kUnsupported, "there is no command \"411\""}});
    for (int i = 0; i < 120; ++i) { call("OPN", "OPN000"); }
    EXPECT_EQ(told("session", "count"), 124);
    EXPECT_EQ(told("session", "commands").size(), 100U);
    EXPECT_EQ(told("session", "host"), true);
    host_.reset();
    while (told("session", "host") == true) {}
    host_.emplace(pinPad_->path());
    EXPECT_EQ(told("session", "count"), 124);
    ask(kOpenSession);
    EXPECT_EQ(told("session", "session"), "encrypted");
    call("GIN0034X1", "ERR009");
    expect_findings({{Kind::kSequence, "a plain command inside an encrypted session"}});
}

TEST_F(StateTest, NamesAndNumbersFindings) {
    play_controlled();
    const std::string first = "GIN: CMD_LEN1: 3 bytes due, 0 left";
    refuse("011", Kind::kLayout, {{"GIN", first}});
    json finding = told("findings", "findings").at(0);
    EXPECT_EQ(finding.at("field"), "CMD_LEN1");
    EXPECT_EQ(finding.at("number"), 1);
    done(R"({"do":"clear-findings"})");
    call("GIN", "GIN011");
    EXPECT_EQ(told("findings", "findings").at(0).at("number"), 2);
    done(R"({"do":"reset","what":"findings"})");
    call("GIN", "GIN011");
    EXPECT_EQ(told("findings", "findings").at(0).at("number"), 1);
    expect_findings({});
}

TEST_F(StateTest, DropsPlansWithTheSessionTheyAreFor) {
    play_controlled();
    const auto plan = [&](const std::string& key, const std::string& more = "") {
        done(R"({"do":"when","command":"GKY","acts":[{"do":"press","key":")" + key + R"("}])" + more + "}");
    };
    plan("f1");
    plan("f2");
    plan("f3", R"(,"keep":true)");
    pinPad_->when("GKY", Gestures().press(Key::kF4));
    call("GKY", "GKY004");
    EXPECT_EQ(told("state", "plans"), 3);
    call("CLO032" + padded("", 32), "CLO000");
    EXPECT_EQ(told("plans", "plans"), json::parse(R"([{"command":"GKY","acts":1,"keep":true},)"
                                                  R"({"command":"GKY","acts":1,"keep":true}])"));
    EXPECT_EQ(told("plans", "unused"), json::parse(R"([{"command":"GKY","acts":1,"keep":false}])"));
    call("GKY", "GKY006");
    call("GKY", "GKY007");
    // What ends a session that another till has left is not the end of the next.
    plan("f2");
    call("CLO032" + padded("", 32), "CLO000");
    call("OPN", "OPN000");
    call("GKY", "GKY005");
    // Who comes to close the line is known before the next plan is made; who only looks in is nobody.
    plan("f1");
    host_.reset();
    plan("f2");
    { const Host passer(pinPad_->path()); }
    host_.emplace(pinPad_->path());
    call("GKY", "GKY005");
    EXPECT_EQ(told("plans", "unused").size(), 2U);
    plan("f1");
    done(R"({"do":"clear-plans"})");
    EXPECT_EQ(told("plans", "plans").size() + told("plans", "unused").size(), 0U);
    refused(R"({"do":"when","command":"GKY","acts":[],"keep":1})", "\"keep\" is neither true nor false");
}

TEST_F(StateTest, ResetsOnePartOrAllUnlessACommandWaits) {
    const std::string draw = "GIX006"s + "0001 0002 805A"_hex;
    const std::string verify = "CHP04603004002000802" + padded("", 32);
    const std::string logo = "DSI012"s + "001E 0008"_hex + "LOGO    ";
    const std::string count = "GIX006"s + "0001 0002 9200"_hex;
    Device device = Device::standard();
    device.media.store("LOGO", {.type = 1, .bytes = {1}});
    play_controlled({.device = device, .faults = {{.kind = "status", .command = "GTS", .status = 42}}, .seed = 5});
    const std::string drawn = ask(draw);
    EXPECT_NE(ask(draw), drawn);
    call("GTS00203", "GTS042");
    load_tables();
    ask("EBX032"s + "000F 0010 00112233445566778899AABBCCDDEEFF 0003 0002"_hex + "50" + "0009 0002"_hex + "00");
    call("DMF012"s + "001E 0008"_hex + "LOGO    ", "DMF000");
    for (const auto& [what, request, before, after] : {
             std::tuple("tables", "GTS00203"s, "GTS000010V1        "s, "GTS021"s),
             {"keys", count, "GIX000014" + "9200 000A FFFF9876543210E00001"_hex,
              "GIX000014" + "9200 000A FFFF9876543210E00000"_hex},
             {"media", logo, "DSI100", "DSI000"},
             {"faults", "GTS00203", "GTS021", "GTS042"},
         }) {
        call(request, before);
        done(R"({"do":"reset","what":")"s + what + R"("})");
        call(request, after);
    }
    done(R"({"do":"insert","card":"mastercard-chip"})");
    call("CHP00501000", "CHP0000210093B6500002063CB6800");
    call_while(Gestures().type("1111"), verify, "CHP00000700263C2");
    call_while(Gestures().type("1111"), verify, "CHP00000700263C1");
    done(R"({"do":"reset","what":"pins"})");
    call_while(Gestures().type("1111"), verify, "CHP00000700263C2");
    // A wrong PIN stays remembered while the card is away, unless the card has become another one.
    for (const auto& [change, left] : {std::pair(R"({"do":"cards"})", "63C1"),
                                       {R"({"do":"edit-card","card":"mastercard-chip"})", "63C2"},
                                       {R"({"do":"reset","what":"cards"})", "63C2"}}) {
        done(R"({"do":"remove"})");
        exchange(frame("RMC032" + padded("", 32)), kAck + frame("RMC000"));
        ask_for(change);
        EXPECT_EQ(told("state", "card"), false);
        done(R"({"do":"insert","card":"mastercard-chip"})");
        call("CHP00501000", "CHP0000210093B6500002063CB6800");
        call_while(Gestures().type("1111"), verify, "CHP000007002"s + left);
    }
    done(R"({"do":"when","command":"GKY","acts":[],"keep":true})");
    exchange(frame("GKY"), kAck);
    done(R"({"do":"when","command":"RMC","acts":[],"keep":true})");
    for (const char* what : {"all", "cards", "tables", "keys", "pins", "media"}) {
        refused(R"({"do":"reset","what":")"s + what + R"("})", "GKY waits");
    }
    EXPECT_EQ(told("state", "plans"), 1);
    for (const char* what : {"plans", "faults", "findings"}) { done(R"({"do":"reset","what":")"s + what + R"("})"); }
    EXPECT_EQ(told("state", "plans"), 0);
    exchange(kCan, kEot);
    refused(R"({"do":"reset","what":"world"})", "there is no \"world\" to reset");
    done(R"({"do":"reset"})");
    EXPECT_EQ(told("state", "card"), false);
    EXPECT_EQ(told("session", "session"), "none");
    EXPECT_EQ(ask(draw), drawn);
    call("GTS00203", "GTS042");
}

TEST_F(StateTest, MakesAndEditsCardsAsACardsFileWould) {
    play_controlled();
    done(R"({"do":"new-card","card":"mine","members":{"pan":"4111111111111111","track2":"4111111111111111=3012"}})");
    done(R"({"do":"new-card","card":"other","like":"visa-chip","members":{"pan":"5200828282828210",)"
         R"("chip":{"pin":"4711","verification":"offline-pin"},"track1":null}})");
    const Card original = card("visa-chip");
    const Card made = control_->cards().at("other");
    EXPECT_EQ(made.pan, "5200828282828210");
    EXPECT_EQ(made.track1, "");
    EXPECT_EQ(made.track2, original.track2);
    EXPECT_EQ(made.applications.size(), 1U);
    EXPECT_EQ(made.chip->pin, "4711");
    EXPECT_EQ(made.chip->script, original.chip->script);
    done(R"({"do":"edit-card","card":"other","members":{"applications":[{"aid":"A0000000041010","acquirer":3,)"
         R"("record":"02"}],"chip":null}})");
    EXPECT_EQ(control_->cards().at("other").applications.at(0).aid, to_bytes("A0000000041010"_hex));
    EXPECT_FALSE(control_->cards().at("other").chip);
    done(R"({"do":"when","command":"CKE","acts":[{"do":"swipe","card":"mine"}]})");
    call("CKE0040100",
         "CKE000225100" + padded("", 76) + "21" + padded("4111111111111111=3012", 37) + "000" + padded("", 104));
    refused(R"({"do":"new-card","card":"mine"})", "there is a card \"mine\" already");
    refused(R"({"do":"new-card","card":"bare"})", "bare.pan: is missing");
    refused(R"({"do":"new-card","card":"a b"})", "\"card\" is not 1 to 40 characters of ASCII without blanks");
    refused(R"({"do":"new-card","card":"bare","like":"none"})", "there is no card \"none\"");
    refused(R"({"do":"edit-card","card":"none"})", "there is no card \"none\"");
    refused(R"({"do":"edit-card","card":"mine","members":[]})", "\"members\" is no object");
    refused(R"({"do":"edit-card","card":"mine","members":{"country":1.5}})", "no card has a 1.5");
    refused(R"({"do":"edit-card","card":"mine","members":{"colour":"red"}})", "mine.colour: there is no such key");
    refused(R"({"do":"edit-card","card":"mine","members":{"chip":{"tries":10}}})",
            "mine.chip.tries: 10 is not from 0 to 9");
    const std::string deep(30000, '[');
    refused(R"({"do":"edit-card","card":"mine","members":{"tags":)" + deep + std::string(30000, ']') + "}}",
            "no card goes so deep");
    done(R"({"do":"reset","what":"cards"})");
    EXPECT_EQ(control_->cards().names(), Cards::standard().names());
    EXPECT_EQ(control_->cards().at("visa-chip").name, original.name);
}

}  // namespace
