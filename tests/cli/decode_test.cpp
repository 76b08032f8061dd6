// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <thread>

#include "simulator/recording/recorder.h"
#include "simulator/recording/replayer.h"
#include "simulator/recording/scenario_maker.h"
#include "simulator/scenario/performance.h"
#include "simulator/watch/trace.h"
#include "tests/cli/tool.h"

namespace {

class DecodeTest : public ToolTest {
protected:
    // From, what, the status's name and the contents of each line.
    [[nodiscard]] std::string rows(Arguments arguments) const {
        arguments.insert(arguments.begin(), "decode");
        std::string text;
        const Json object = run_json(arguments);
        for (const Json& frame : object["result"]["frames"]) {
            const Json& contents = frame["contents"];
            text += frame["from"].get<std::string>() + "/" + frame["what"].get<std::string>() + "/"
                    + (frame["status"].is_object() ? frame["status"]["name"].get<std::string>() : "") + "/"
                    + (contents.is_string() ? contents.get<std::string>() : contents.dump()) + "\n";
        }
        return text;
    }
};

TEST_F(DecodeTest, PutsFramesAndPacketsIntoWords) {
    const std::pair<const char*, const char*> cases[]{
        {"06", "PIN pad/ACK//\n"},
        {"18", "host/CAN//\n"},
        // "GIN" 002 "00" in its frame.
        {"16 47:49:4e 30 30 32 30 30 17 ee ca", "host/GIN device information//{\"GIN_ACQIDX\":\"00\"}\n"},
        // "CLO" 000, "GKY" 004 and "NTM" 000 032.
        {"434C4F303030", "PIN pad/CLO close the session/ST_OK/\n"},
        {"474B59303034", "PIN pad/GKY wait for a key/ST_F1/\n"},
        // "GIX" 000 008: PP_TLRMEM.
        {"4749583030303030388062000400040000", "PIN pad/GIX device information/ST_OK/{\"PP_TLRMEM\":262144}\n"},
        // "GCX" 000 020: PP_PAN, which the PIN pad has not masked.
        {"4743583030303032308052001034313131313131313131313131313131",
         "PIN pad/GCX read a card/ST_OK/{\"PP_PAN\":\"411111******1111\"}\n"},
        // "GIX" 008: SPE_IDLIST.
        {"4749583030380001000480018003", "host/GIX device information//{\"SPE_IDLIST\":\"80018003\"}\n"},
    };
    for (const auto& [hex, words] : cases) { EXPECT_EQ(rows({hex}), words) << hex; }
    // "DSP" with what a terminal would act on, what is no UTF-8, and accents in both.
    std::string shown = "445350303332C29BE28080EDA080C9C389";
    for (int i = 0; i < 21; ++i) { shown += "20"; }
    EXPECT_EQ(rows({shown}), "host/DSP show a message//{\"DSP_MSG\":\"Â\\\\x9Bâ\\\\x80\\\\x80í\u00A0\\\\x80ÉÉ\"}\n");
    for (const char* damaged : {"16434C4F170000", "16434C4F"}) {
        EXPECT_NE(rows({damaged}).find("damaged frame"), std::string::npos);
    }
}

TEST_F(DecodeTest, ReadsACapture) {
    const std::string traced = folder_.file("traced", "> 47 4B 59\n  GKY wait for a key\n< 06\n< 474B59303133\n");
    EXPECT_EQ(rows({"--file", traced}),
              "host/GKY wait for a key//\nPIN pad/ACK//\nPIN pad/GKY wait for a key/ST_CANCEL/\n");
    const std::string plain = folder_.file("plain", "474B59\n\n474B59303133\n");
    EXPECT_EQ(rows({"--file", plain}), "host/GKY wait for a key//\nPIN pad/GKY wait for a key/ST_CANCEL/\n");
    EXPECT_NE(run({"decode", "--file", folder_.file("words", "hello\n")}).err.find("Line 1"), std::string::npos);
}

// Of one sale, the virtual PIN pad and the tool tell the same; the former also each byte.
using DecodeSaleTest = PinPadToolTest;
TEST_F(DecodeSaleTest, ReadsTheTracesOfASale) {
    pinPad_.when("GCX", Gestures().insert(card("visa-chip")));
    pinPad_.when("GOX", Gestures().type("1234"));
    pinPad_.when("RMC", Gestures().remove());
    const std::string own = folder_ / "own";
    const Ended ended = run({"sale", "--amount", "12.34", "--tables", QUORVEL_TABLES, "--secure", "--json", "--trace",
                             "--trace-file", own});
    ASSERT_EQ(ended.exit, 0) << ended.err;
    std::string wire;
    for (const sim::Traffic& traffic : pinPad_.traffic()) { wire += sim::to_text(traffic); }
    std::vector<std::string> read;
    for (const std::string& file : {own, folder_.file("json", ended.out), folder_.file("wire", wire)}) {
        const Json object = ToolTest::run_json({"decode", "--file", file});
        std::string rows;
        for (const Json& row : object["result"]["frames"]) {
            const std::string what = row["what"];
            if (row["from"] == "line" || what.size() == 3) { continue; }
            rows += row["from"].get<std::string>() + " " + what + (row["status"].is_object() ? " ok" : "")
                    + (row["contents"].empty() ? "" : " +") + "\n";
        }
        read.push_back(rows);
    }
    EXPECT_EQ(read[0], read[2]);
    EXPECT_EQ(read[1], read[2]);
    EXPECT_NE(read[0].find("host FCX finish with the chip +\nPIN pad FCX finish with the chip ok +\n"),
              std::string::npos)
        << read[0];
}

// A sale by the tool on a PIN pad that is recorded.
class RecordedSaleTest : public ToolTest {
protected:
    std::string sell(const std::string& port, const std::string& amount, const std::string& session) const {
        Arguments sale{"--port", port, "sale", "--amount", amount, "--tables", QUORVEL_TABLES};
        if (!session.empty()) { sale.push_back(session); }
        const Ended ended = run(sale);
        EXPECT_EQ(ended.exit, 0) << ended.err;
        return ended.out;
    }

    // What the tool came to, and the trace.
    std::pair<std::string, std::string> record(const std::string& session, sim::Recorder::Values values) {
        sim::PinPad::Options options;
        sim::Recorder recorder(path_, values, sim::Cards::standard(), {});
        std::string trace;
        recorder.listen(options);
        options.listeners.traffic = [&trace, first = options.listeners.traffic](const sim::Traffic& traffic) {
            first(traffic);
            trace += sim::to_text(traffic);
        };
        sim::PinPad pinPad(std::move(options));
        pinPad.start();
        pinPad.when("GCX", Gestures().insert(sim::Cards::standard().at("mastercard-chip")));
        pinPad.when("GOX", Gestures().type("1234"));
        pinPad.when("RMC", Gestures().remove());
        std::string out = sell(pinPad.path(), "12.34", session);
        pinPad.stop();
        return {out, trace};
    }

    std::pair<std::string, std::string> replay(const std::string& amount, const std::string& session) const {
        std::string differences;
        sim::Replayer replayer(sim::Recording::from_file(path_),
                               {.differs = [&](const std::string& how) { differences += how + "\n"; }});
        std::thread thread([&] { replayer.run(); });
        std::string out = sell(replayer.path(), amount, session);
        thread.join();
        return {out, differences};
    }

    std::string rows(const std::string& file) const {
        std::string rows;
        const Json object = run_json({"decode", "--file", file});
        for (const Json& row : object["result"]["frames"]) {
            const std::string what = row["what"];
            if (row["from"] == "line" || what.size() == 3) { continue; }
            rows += row["from"].get<std::string>() + " " + what + (row["contents"].empty() ? "\n" : " +\n");
        }
        EXPECT_NE(rows.find("PIN pad GOX go on with the chip +\n"), std::string::npos);
        return rows;
    }

    const std::string path_ = folder_ / "recorded";
};

TEST_F(RecordedSaleTest, IsReplayedDecodedAndMadeAScenarioOf) {
    for (const std::string session : {"", "--secure"}) {
        const bool kept = session.empty();
        const auto [out, trace] =
            record(session, kept ? sim::Recorder::Values::kKept : sim::Recorder::Values::kWithheld);
        EXPECT_EQ(rows(path_), rows(folder_.file("trace", trace)));
        const auto [again, same] = replay("12.34", session);
        EXPECT_EQ(same, "");
        EXPECT_EQ(again == out, kept) << again;
        EXPECT_EQ(again.find("411111******1111") == std::string::npos, kept) << again;
        const std::string differences = replay("99.00", session).second;
        EXPECT_NE(differences.find(": GCX: expected SPE_AMOUNT=\"000000001234\", got SPE_AMOUNT=\"000000009900\"\n"),
                  std::string::npos)
            << differences;
        const std::string text = sim::scenario_from(sim::Recording::from_file(path_), "Recorded");
        for (const auto& [amount, good] : {std::pair("12.34", true), {"99.00", false}}) {
            sim::Performance performance(sim::Scenario::from_toml("recorded", text));
            sim::PinPad pinPad(performance.prepare({}));
            pinPad.start();
            sell(pinPad.path(), amount, session);
            pinPad.stop();
            EXPECT_EQ(performance.complaints(pinPad.findings()).empty(), good) << text;
        }
    }
    const Ended wrong = run({"decode", "--file", folder_.file("wrong", "quorvel-recording 1\n1 > can\n")});
    EXPECT_EQ(wrong.exit, 2);
    EXPECT_NE(wrong.err.find("In the recording, line 2: \"1\" is no time"), std::string::npos) << wrong.err;
}

// As a shell would complete them.
TEST_F(DecodeTest, CompletionKnowsCommandsAndOptions) {
    const std::string script = folder_.file("completion", run({"completion", "bash"}).out);
    for (const auto& [words, at, due] : {std::tuple("quorvel dec", 1, "decode"),
                                         {"quorvel tables l", 2, "load"},
                                         {"quorvel --port /dev/ttyS0 sale --sec", 4, "--secure"},
                                         {"quorvel sale --host ''", 3, "approves declines unreachable"},
                                         {"quorvel pin --method mk", 3, "mk-des mk-tdes"},
                                         {"quorvel event st", 2, "stripe"},
                                         {QUORVEL_SIM " --ends s", 2, "stop"},
                                         {QUORVEL_SIM " --scenario chip-on", 2, "chip-online-pin"},
                                         {QUORVEL_SIM " scen", 1, "scenario-from"}}) {
        const bool own = std::string_view(words).starts_with("quorvel ");
        const std::string test = folder_.file(
            "test", std::string("set -u; . ") + (own ? script : QUORVEL_SIM_COMPLETION) + "\nCOMP_WORDS=(" + words
                        + ")\nCOMP_CWORD=" + std::to_string(at) + "\n" + (own ? "_quorvel" : "_quorvel_sim")
                        + "\n[ \"${COMPREPLY[*]}\" = '" + due + "' ]\n");
        EXPECT_EQ(std::system(("bash " + test).c_str()), 0) << words;
    }
    const std::string all = std::string(QUORVEL_SIM) + " --help | grep -o -e ' --[a-z-]*' | sort -u | while read o; do "
                            "grep -q -e \"[ (|]$o[ '|)]\" " QUORVEL_SIM_COMPLETION " || exit 1; done";
    EXPECT_EQ(std::system(all.c_str()), 0);
    EXPECT_EQ(run({"completion", "zsh"}).out.substr(0, 17), "#compdef quorvel\n");
}

}  // namespace
