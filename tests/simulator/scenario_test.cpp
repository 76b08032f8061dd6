// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fstream>
#include <stdexcept>

#include "simulator/scenario/performance.h"
#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

Scenario scenario(const std::string& text) { return Scenario::from_toml("s.toml", "title = 'S'\n" + text); }

std::string fault_of(const std::string& text) {
    return thrown([&] { static_cast<void>(Scenario::from_toml("s.toml", text)); });
}

TEST(ScenarioFile, SaysWhatIsWrongAndWhere) {
    const auto step = [](const std::string& line) {
        return "title = 'S'\nscript = [\n{ wait = 'GCX' },\n" + line + "]";
    };
    const auto expect = [](const std::string& keys) { return "title = 'S'\n[[expect]]\n" + keys; };
    const std::vector<std::pair<std::string, std::string>> cases{
        {"description = 'D'", "line 1: title: is missing"},
        {"title = 'S'\nends = 'soon'", "line 2: ends: \"soon\" is none of its values"},
        {"title = 'S'\nexpct = 1", "line 2: expct: there is no such key"},
        {"title = 'S'\n[device]\nmodel = '01234567890123456789'", "line 3: device.model: longer than 19 characters"},
        {"title = 'S'\n[device]\nlanguage = 'fr'", "line 3: device.language: \"fr\" is none of its values"},
        {"title = 'S'\n[keys]\nfile = 'none.toml'", "line 3: keys.file: none.toml cannot be read"},
        {"title = 'S'\n[[tables]]\nversion = '1'\nrecords = [{ acquirer = 3, index = '1' }]",
         "line 4: tables.records.index: not of two characters"},
        {step("{ wait = 'GCZ' }"), "line 4: script.wait: there is no command \"GCZ\""},
        {step("{ wait = 'GCX', remove = true }"), "line 4: script.remove: not in one step with wait"},
        {step("{ pause = '1s' }"), "line 4: script.pause: no whole number"},
        {step("{ insert = 'visa-chp' }"), "line 4: script.insert: there is no card \"visa-chp\""},
        {step("{ insert = 'visa-chip', remove = true }"), "line 4: script.remove: a step after insert"},
        {step("{ inset = 'visa-chip' }"), "line 4: script.inset: there is no such step"},
        {step("{ remove = false }"), "line 4: script.remove: neither left out nor true"},
        {step("{ fault = 'delay' }"), "line 4: script.fault: \"delay\" needs a time"},
        {step("{ fault = 'bad-crc', evry = 2 }"), "line 4: script.fault: \"evry\" has no place in it"},
        {step("{ when = 'RMC', hang-up = 1 }"), "line 4: script.when: hang-up is nothing that a cardholder does"},
        {step("{}"), "line 4: a step without anything to do"},
        {expect("status = 'OK'"), "line 2: expect.command: is missing"},
        {expect("command = 'GCX'\nstatus = 'FINE'"), "line 4: expect.status: there is no status \"FINE\""},
        {expect("command = 'GCX'\ntimes = 0"), "line 4: expect.times: 0 is not from 1 to 1000000"},
        {expect("command = 'GCX'\nwith = 1"), "line 4: expect.with: no list of texts"},
        {expect("command = ['GIN', 'GCX']\nwith = ['GIN_ACQIDX', 'DSP_MSG']"),
         "line 4: expect.with: there is no \"DSP_MSG\" in GIN or GCX"},
        {expect("command = 'GCX'\nwithout = 'SPE_ACQREF='"), "line 4: expect.without: no value"},
        {expect("command = 'GIX'\nwith = 'SPE_IDLIST=800'"),
         "line 4: expect.with: an odd number of hexadecimal digits"},
    };
    for (const auto& [text, due] : cases) {
        EXPECT_EQ(fault_of(text).substr(0, due.size() + 8), "s.toml: " + due) << text;
    }
    for (const auto& [with, due] : {
             std::pair("SPE_AMONT", "there is no \"SPE_AMONT\" in GCX"),
             {"SPE_AMOUNT=10", "10 is no text between quotation marks"},
             {"SPE_AMOUNT=\"10", "\"10 is no text between quotation marks"},
             {"SPE_TIMEOUT=\"60\"", "\"60\" is no number"},
             {"SPE_TIMEOUT~60", "SPE_TIMEOUT is a number, which contains nothing"},
         }) {
        const std::string fault = fault_of(expect("command = 'GCX'\nwith = '"s + with + "'"));
        EXPECT_EQ(fault, "s.toml: line 4: expect.with: "s + due);
    }
    EXPECT_THROW(static_cast<void>(Scenario::find("chip-online")), std::runtime_error);
}

TEST(ScenarioFile, IsAsTheGuideHasIt) {
    std::ifstream file(QUORVEL_DOCS "/writing-a-scenario.md");
    std::string block;
    bool inside = false;
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        if (inside && line != "```") { block += line + "\n"; }
        if (inside && line == "```") {
            EXPECT_EQ(fault_of(block.find("title = ") == std::string::npos ? "title = 'S'\n" + block : block), "");
            ++count;
        }
        if (line.starts_with("```")) { inside = line == "```toml", block.clear(); }
    }
    EXPECT_GT(count, 3);
}

std::string want(const std::string& command) { return "[[expect]]\ncommand = " + command; }

struct Answered {
    std::string request;
    std::optional<int> status;
};

std::vector<std::string> judged(const std::string& text, const std::vector<Answered>& commands,
                                const std::vector<Finding>& findings = {}) {
    const Scenario judgedBy = scenario(text);
    Judge judge(judgedBy);
    for (const auto& [request, status] : commands) {
        judge.exchanged({.command = request.substr(0, 3), .request = to_bytes(request), .status = status});
    }
    return judge.complaints(findings);
}

// SPE_AMOUNT, but for its value.
const std::string kAmount = "GCX009" + "0013 0005"_hex;

using Complaints = std::vector<std::string>;

TEST(Judge, LetsPassWhatIsExpected) {
    const std::string sale =
        "[[expect]]\ncommand = ['GCR', 'GCX']\nstatus = 'OK'\nwith = 'SPE_AMOUNT~\"100\"'\nwithout = 'SPE_ACQREF'\n"
        "[[expect]]\ncommand = 'GKY'\nstatus = 'none'\ntimes = 2\n"
        "[[expect]]\ncommand = 'DSP'\nanywhere = true\n"
        "[[expect]]\ncommand = 'GKY'\nanywhere = true\nstatus = 4\ntimes = 0\n"
        "[[finding]]\ntext = 'came while'\n";
    EXPECT_EQ(
        judged(sale, {{"OPN", 0}, {kAmount + "10000", 0}, {"DSP", 0}, {"GKY", {}}, {"DSP", 0}, {"GKY", {}}, {"CLO", 0}},
               {{Finding::Kind::kSequence, "a command came while GKY waited"}}),
        Complaints{});
}

TEST(Judge, TellsWhatCameInstead) {
    const std::string go = "[[expect]]\ncommand = 'GKY'\n[[expect]]\ncommand = ['GIN', 'GIX']\nstatus = 'OK'\n";
    const std::tuple<std::string, std::vector<Answered>, std::string> cases[]{
        {go, {{"GKY", 0}, {"GIN", 13}}, ":4: GIN was answered with 013 CANCEL, not with 000 OK"},
        {go, {{"GKY", 0}, {"GIX", {}}}, ":4: GIX was answered with nothing, not with 000 OK"},
        {go,
         {{"GIN", 0}, {"GKY", 0}, {"DSP", 0}, {"CLO", 0}},
         ":4: expected once: GIN or GIX, answered with 000 OK; it came never, and DSP, CLO instead"},
        {go, {}, ":2: expected once: GKY; it came never, and nothing instead"},
        {want("'GKY'\ntimes = 3"), {{"GKY", 0}}, ":2: expected 3 times: GKY; it came once, and nothing instead"},
        {want("'GCX'\nwith = 'SPE_ACQREF'"),
         {{kAmount + "10000", 0}},
         ":2: GCX came without SPE_ACQREF, as GCX read a card: SPE_AMOUNT: 5 bytes withheld"},
        {want("'GIN'\nwithout = 'GIN_ACQIDX=\"00\"'"), {{"GIN00200", 0}}, ":2: GIN came with GIN_ACQIDX=\"00\""},
        {want("'GCX'\nwith = 'SPE_AMOUNT=\"10000\"'"),
         {{kAmount + "20000", 0}},
         R"(:2: GCX came without SPE_AMOUNT="10000", but with SPE_AMOUNT="20000")"},
        {want("'DSP'\nanywhere = true\nstatus = 'OK'"),
         {{"DSP", 11}, {"GIN", 0}},
         ":2: expected at least once: DSP, answered with 000 OK; it came never; the last DSP was answered with "
         "011 INVPARM, not with 000 OK"},
        {want("'CLO'\nanywhere = true\ntimes = 0"),
         {{"CLO", 0}, {"CLO", 0}},
         ":2: expected never: CLO; it came 2 times"},
    };
    for (const auto& [text, commands, due] : cases) {
        EXPECT_EQ(judged(text, commands), Complaints{"s.toml" + due}) << text;
    }
    EXPECT_EQ(judged("[[finding]]\ntext = 'late'", {}, {{Finding::Kind::kLayout, "GIN: short"}}),
              (Complaints{"unexpected finding (layout): GIN: short",
                          "s.toml:2: expected the finding \"late\"; it never came"}));
}

// A value may hold whatever stands between values in words, and ends where it ends.
TEST(Judge, ComparesValues) {
    const std::string dsp = "DSP032PAY 10,00, SPE_AMOUNT=\"1\"" + std::string(7, ' ');
    const std::string request = "GCX028" + "000C 0001 3C 0004 0003 9F025A 0013 000C"_hex + "000000001000";
    for (const auto& [command, sent, expected, met] : {
             std::tuple("DSP", dsp, R"(DSP_MSG="PAY 10,00, SPE_AMOUNT="1"")", true),
             {"DSP", dsp, "DSP_MSG=\"PAY 10,00\"", false},
             {"DSP", dsp, "DSP_MSG~\"10,00, \"", true},
             {"DSP", dsp, "DSP_MSG~\"10.00\"", false},
             {"GCX", request, "SPE_TIMEOUT=60", true},
             {"GCX", request, "SPE_TIMEOUT=6", false},
             {"GCX", request, "SPE_TAGLIST=9F025A", true},
             {"GCX", request, "SPE_TAGLIST=9F02", false},
             {"GCX", request, "SPE_TAGLIST~9F02", true},
             {"GCX", request, "SPE_AMOUNT=\"00000000100\"", false},
             {"GCX", request, "SPE_AMOUNT", true},
             {"GCX", request, "SPE_CASHBACK", false},
         }) {
        const std::string text = fmt::format("[[expect]]\ncommand = '{}'\nwith = '{}'", command, expected);
        EXPECT_EQ(judged(text, {{sent, 0}}).empty(), met) << expected;
    }
}

class PerformanceTest : public PinPadTest {
protected:
    void perform(const std::string& text) {
        performance_.emplace(scenario(text));
        play(performance_->prepare({}));
    }

    Complaints complaints() {
        exchange(kCan, kEot);
        pinPad_->stop();
        host_.reset();
        Complaints complaints = performance_->complaints(pinPad_->findings());
        pinPad_.reset();
        return complaints;
    }

    std::optional<Performance> performance_;
};

TEST_F(PerformanceTest, DoesOneStepAfterTheOther) {
    perform(
        "script = [\n{ when = 'RMC', remove = true },\n{ insert = 'visa-chip' },\n{ wait = ['CKE', 'GKY'] },\n"
        "{ notify = 'SOON' },\n{ pause = 1 },\n{ press = 'f1' },\n{ fault = 'status', status = 40 },\n"
        "{ wait = 'GKY' },\n{ clear-faults = true },\n{ press = 'f2' },\n{ wait = 'MNU' },\n{ choose = 1 },\n]\n"
        "[device]\nserial_number = 'MINE'\nlanguage = 'pt'\n[[tables]]\nacquirer = 3\nversion = '0123456789'\n");
    call("GKY", "NTM000004SOON");
    expect(frame("GKY040"));
    call("GKY", "GKY005");
    const std::string option = "0020 0018"_hex + padded("TEA", 24);
    call("MNU056" + option + option, "MNU000006" + "804D 0002"_hex + "01");
    call("RMC032" + std::string(32, 'X'), "RMC000");
    EXPECT_EQ(pinPad_->screen().text, "BEM-VINDO");
    call("GTS00203", "GTS0000100123456789");
    EXPECT_EQ(complaints(), Complaints{});
}

TEST_F(PerformanceTest, TellsWhereTheScriptGotStuck) {
    perform("script = [\n{ wait = 'GKY' },\n{ press = 'f1' },\n{ wait = ['GCR', 'GCX'] },\n{ remove = true },\n]\n");
    call("GKY", "GKY004");
    exchange(frame("CKE003100"), kAck);
    EXPECT_EQ(complaints(),
              Complaints{"s.toml:5: the script did not get past wait = [\"GCR\",\"GCX\"]; CKE waited instead"});
}

TEST_F(PerformanceTest, CountsWhatTheHostWasToldAndWhatItGaveUp) {
    perform(
        "script = [{ fault = 'status', status = 40, command = 'GIN' }]\n"
        "[[expect]]\ncommand = 'GIN'\nstatus = 'INTERR'\n[[expect]]\ncommand = 'GKY'\nstatus = 'none'\n"
        "[[expect]]\ncommand = 'GKY'\nstatus = 'none'\n");
    call("GIN00200", "GIN040");
    exchange(frame("GKY"), kAck);
    exchange(kCan, kEot);
    exchange(frame("GKY"), kAck);
    EXPECT_EQ(complaints(), Complaints{});
}

}  // namespace
