// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <csignal>
#include <deque>
#include <set>

#include "simulator/watch/trace_file.h"
#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"
#include "tests/support/child.h"
#include "wire/toml.h"

using namespace quorvel::sim;

namespace {

namespace fs = std::filesystem;

// quorvel-sim, run as a user does.
class Program : public support::Child {
public:
    explicit Program(std::vector<std::string> arguments) : Child(with_name(std::move(arguments))) {}

    // The path behind READY.
    std::string ready() {
        const std::string said = line();
        EXPECT_TRUE(said.starts_with("READY /dev/pts/")) << said;
        return said.size() > 6 ? said.substr(6) : "";
    }

    void expect_refusal(const std::string& due) {
        EXPECT_EQ(wait(), 2);
        EXPECT_EQ(errors(), "quorvel-sim: " + due + "\n");
        EXPECT_EQ(line(), "");
    }

private:
    static std::vector<std::string> with_name(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), QUORVEL_SIM);
        return arguments;
    }
};

class ProgramTest : public testing::Test {
protected:
    TempDir folder_;
    const std::string link_ = folder_ / "port";
};

void expect_alive(const std::string& port) {
    Host host(port);
    host.send(kCan);
    EXPECT_EQ(host.receive(1), kEot);
}

TEST_F(ProgramTest, KeepsALinkWhileItRunsAndTheLinkIsItsOwn) {
    fs::create_symlink(folder_ / "gone", link_);
    for (const auto& [signal, taken] : {std::pair(SIGINT, false), {SIGTERM, true}}) {
        Program program({"--link", link_});
        const std::string path = program.ready();
        EXPECT_EQ(fs::read_symlink(link_), path);
        if (taken) {
            fs::remove(link_);
            fs::create_symlink(folder_ / "other", link_);
        }
        expect_alive(path);
        EXPECT_EQ(program.end(signal), 0);
        EXPECT_EQ(program.errors(), "");
        EXPECT_EQ(fs::is_symlink(link_), taken);
    }
    EXPECT_EQ(fs::read_symlink(link_), folder_ / "other");
}

TEST_F(ProgramTest, TakesNoNameThatSomethingElseHas) {
    const std::string file = folder_.file("file", "kept");
    fs::create_symlink(file, link_);
    Program({"--link", file}).expect_refusal(file + " is there and no link");
    Program({"--link", link_}).expect_refusal(link_ + " leads to " + file + ", which is there");
    EXPECT_EQ(fs::file_size(file), 4U);
}

TEST_F(ProgramTest, TakesItsKeysFromAFile) {
    const std::string path =
        folder_.file("keys.toml", "[[master]]\nstrength = 'des'\nuse = 'pin'\nindex = 7\nkey = '0123456789ABCDEF'\n");
    Program program({"--keys", path, "--session", "lenient"});
    Host host(program.ready());
    host.send("\x16GEN01302008K3000608\x17\x93\xC8");
    EXPECT_EQ(host.receive(20), "\x06\x16GEN000006003010\x17\x1F\xA4");
    folder_.file("keys.toml", "[[master]]");
    Program({"--keys", path}).expect_refusal(path + ": line 1: master.strength: is missing");
    Program({"--keys", link_}).expect_refusal(link_ + " cannot be read");
}

TEST_F(ProgramTest, IsControlledThroughASocketAndTellsWhereItReturns) {
    const std::string socket = folder_ / "control";
    Program program({"--link", link_, "--control", socket, "--speed", "115200", "--seed", "7"});
    program.ready();
    ControlClient client(socket);
    EXPECT_EQ(client.ask(R"({"do":"hang-up","ms":1})"), R"({"ok":true})");
    const std::string returned = program.ready();
    EXPECT_EQ(fs::read_symlink(link_), returned);
    expect_alive(link_);
    EXPECT_EQ(client.ask(R"({"do":"stop"})"), R"({"ok":true})");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.errors(), "");
    EXPECT_FALSE(fs::exists(socket));
}

TEST_F(ProgramTest, SaysWhatIsWrongWithAnOption) {
    const std::string folder = folder_.dir("folder");
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"--speed", "299"}, "--speed: Value 299 not in range 300 to 4000000"},
        {{"--seed", "-1"}, "Could not convert: --seed = -1"},
        {{"--amounts", "--scenario", "magnetic"}, "--scenario excludes --amounts"},
        {{"--replay", "x", "--seed", "1"}, "--seed excludes --replay"},
        {{"--pace", "1"}, "--pace requires --replay"},
        {{"--seed", "3", "exam", "--", "true"}, "quorvel-sim: --seed has no place with exam"},
        {{"exam", "--case", "1.1.1", "--report", "/dev/null", "--", "true"}, "quorvel-sim: /dev/null: Not a directory"},
        {{"--count", "2", "--face"}, "--count excludes --face"},
        {{"--clock", "2026-02-30T00:00:00Z"},
         "quorvel-sim: \"2026-02-30T00:00:00Z\" is no time like 2026-01-02T03:04:05Z"},
        {{"--trace", folder}, "quorvel-sim: " + folder + ": Is a directory"},
        {{"--control", folder}, "quorvel-sim: " + folder + " is there and no socket"},
        {{"--scenario", link_},
         "quorvel-sim: there is no scenario \"" + link_ + "\": no file, and none of those that --list-scenarios names"},
    };
    for (const auto& [arguments, due] : cases) {
        Program program(arguments);
        EXPECT_EQ(program.wait(), 2) << due;
        EXPECT_EQ(program.errors().substr(0, program.errors().find('\n')), due);
    }
}

TEST_F(ProgramTest, EndsWithTheScenarioAndTellsHowItWent) {
    const std::string path = folder_.file(
        "mine.toml", "title = 'Mine'\n[[expect]]\ncommand = 'DSP'\n[[expect]]\ncommand = 'CLO'\nstatus = 'OK'\n");
    const std::string missing =
        path + ":4: expected once: CLO, answered with 000 OK; it came never, and nothing instead";
    struct Case {
        std::string ends;
        std::vector<std::vector<std::string>> visits;
        std::string complaint;
    };
    // Whoever sends nothing is no host.
    for (const auto& [ends, visits, complaint] : {Case{"close", {{}, {"DSP"}}, missing},
                                                  {"close", {{"DSP", "CLO"}}, ""},
                                                  {"done", {{"DSP"}, {"CLO"}}, ""},
                                                  {"stop", {{"DSP"}, {"CLO"}, {}}, ""},
                                                  {"stop", {{"DSP"}}, missing}}) {
        Program program({"--scenario", path, "--ends", ends, "--session", "lenient"});
        const std::string port = program.ready();
        for (const auto& commands : visits) {
            Host host(port);
            for (const std::string& id : commands) {
                host.send(frame(id + "032" + std::string(32, 'X')));
                EXPECT_EQ(host.receive(11), kAck + frame(id + "000"));
            }
        }
        EXPECT_EQ(ends == "stop" ? program.end(SIGTERM) : program.wait(), complaint.empty() ? 0 : 1) << ends;
        EXPECT_EQ(program.line(), complaint.empty() ? "scenario: ok" : "scenario: failed");
        EXPECT_EQ(program.line(), complaint);
    }
    Program list({"--list-scenarios"});
    EXPECT_EQ(list.wait(), 0);
    EXPECT_EQ(list.line(), "acquirer-unreachable     Acquirer unreachable");
}

// By what the till has done until then.
TEST_F(ProgramTest, JudgesTheCommandThatALineWasClosedOn) {
    const std::string path = folder_.file("mine.toml",
                                          "title = 'Mine'\n[[expect]]\ncommand = 'GKY'\nstatus = 'none'\n"
                                          "[[finding]]\ntext = 'the line was closed while GKY waited'\n"
                                          "[[finding]]\ntext = 'closed without CLO'\n");
    Program program({"--scenario", path});
    {
        Host host(program.ready());
        host.send(kOpn + frame("GKY"));
        EXPECT_EQ(host.receive(12), kAck + kOpnDone + kAck);
    }
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.line(), "scenario: ok");
}

TEST_F(ProgramTest, TalksToTheCardholderInTheLanguageThatItIsTold) {
    const std::string socket = folder_ / "control";
    Program program({"--language", "pt", "--control", socket});
    program.ready();
    EXPECT_NE(ControlClient(socket).ask(R"({"do":"screen"})").find("BEM-VINDO"), std::string::npos);
}

// A session is recorded, played again to a host that does the same and to one that does not, and made a scenario of.
TEST_F(ProgramTest, RecordsAndReplays) {
    const std::string path = folder_ / "recorded";
    const auto call = [](const std::string& port, const std::string& text) {
        Host host(port);
        host.send(frame("DSP032" + padded(text, 32)));
        EXPECT_EQ(host.receive(11), kAck + frame("DSP000"));
    };
    Program recording({"--session", "lenient", "--record", path});
    call(recording.ready(), "PAY");
    EXPECT_EQ(recording.end(SIGTERM), 0);
    for (const auto& [text, ignored, due] : {std::tuple("PAY", "GIN_ACQIDX", "replay: the same"),
                                             {"DAY", "SPE_AMOUNT,DSP_MSG", "replay: the same"},
                                             {"DAY", "DSP_MESSAGE", ""},
                                             {"DAY", "9A", "replay: different"}}) {
        Program replaying({"--replay", path, "--link", link_, "--pace", "0.5", "--ignore", ignored});
        if (*due == 0) {
            replaying.expect_refusal("no request has a \"DSP_MESSAGE\"");
            continue;
        }
        call(replaying.ready(), text);
        const bool same = due == "replay: the same"s;
        EXPECT_EQ(replaying.wait(), same ? 0 : 1);
        EXPECT_EQ(replaying.line(), due);
        EXPECT_EQ(replaying.errors(), same ? ""
                                           : "difference: line 4: DSP: expected DSP_MSG=\"" + padded("PAY", 32)
                                                 + "\", got DSP_MSG=\"" + padded("DAY", 32) + "\"\n");
    }
    Program making({"scenario-from", path});
    EXPECT_EQ(making.wait(), 0);
    EXPECT_EQ(making.line(), "title = \"Recorded in " + path + "\"");
    folder_.file("recorded", "quorvel-recording 1\nGKY\n");
    const std::string wrong = path + ": line 2: \"GKY\" is no setting, and no time either";
    Program({"scenario-from", path}).expect_refusal(wrong);
    Program({"--replay", path}).expect_refusal(wrong);
    Program({"--record", folder_ / "no/where"}).expect_refusal(folder_ / "no/where: No such file or directory");
}

// What a host hears of 16 requests that are answered wrongly by chance; and the last digits of the serial number.
std::string chances_of(Host& host) {
    host.send(kOpn);
    host.receive(kAck.size() + kOpnDone.size());
    std::string heard;
    std::string answer;
    for (int i = 0; i < 16; ++i) {
        host.send(frame("GIX006" + "00 01 00 02 80 01"_hex));
        answer = host.receive(kAck.size() + 27);
        heard += answer.substr(2, 1);
    }
    return heard + answer.substr(22, 3);
}

// All at a time, by the names that lead to them; the first is what it would be alone.
TEST_F(ProgramTest, PlaysSeveralPinPadsOfWhichEachIsItsOwn) {
    constexpr unsigned kCount = 8;
    const std::string socket = folder_ / "control";
    const std::string fault = R"({"do":"fault","fault":"wrong-id","command":"GIX","chance":0.5})";
    Program alone({"--seed", "7", "--control", socket});
    Host aloneHost(alone.ready());
    ControlClient(socket).ask(fault);
    Program program({"--count", "8", "--seed", "7", "--link", link_, "--control", socket});
    std::deque<Host> hosts;
    std::deque<ControlClient> clients;
    for (unsigned number = 1; number <= kCount; ++number) {
        const std::string link = fmt::format("{}.{}", link_, number);
        const std::string said = program.line();
        EXPECT_EQ(said, fmt::format("{}: READY {}", number, fs::read_symlink(link).string()));
        hosts.emplace_back(link);
        EXPECT_EQ(clients.emplace_back(fmt::format("{}.{}", socket, number)).ask(fault), R"({"ok":true})");
    }
    std::set<std::string> heard;
    for (Host& host : hosts) { heard.insert(chances_of(host)); }
    EXPECT_EQ(heard.size(), kCount);
    EXPECT_TRUE(heard.contains(chances_of(aloneHost)));
    hosts[2].send("\x16XYZ\x17\xB3\x05");
    hosts[2].receive(11);
    clients[0].ask(R"({"do":"stop"})");
    EXPECT_TRUE(clients[0].is_left());
    EXPECT_FALSE(fs::is_symlink(link_ + ".1"));
    expect_alive(link_ + ".2");
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(program.errors(), "3: finding (unsupported): there is no command \"XYZ\"\n");
    EXPECT_FALSE(fs::exists(socket + ".8"));
}

TEST_F(ProgramTest, JudgesEachOfSeveralPinPadsByItself) {
    const std::string path = folder_.file("mine.toml", "title = 'Mine'\n[[expect]]\ncommand = 'DSP'\n");
    Program program({"--count", "2", "--scenario", path});
    for (const std::string command : {"DSP", "DEX"}) {
        Host host(program.line().substr(9));
        const std::string text = "032" + padded("HI", 32);
        host.send(kOpn + frame(command == "DSP" ? "DSP" + text : "DEX005002HI") + frame("CLO" + text));
        EXPECT_EQ(host.receive(33), kAck + kOpnDone + kAck + frame(command + "000") + kAck + frame("CLO000"));
    }
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), "1: scenario: ok\n2: scenario: failed\n2: " + path
                                    + ":2: expected once: DSP; it came never, and OPN, DEX, CLO instead\n");
}

TEST_F(ProgramTest, TracesOnlyWhenAsked) {
    const std::string finding = "finding (unsupported): there is no command \"XYZ\"\n";
    const std::string time = "2026-01-02 03:04:05.000 ";
    const std::string heard = time + "> 16 58 59 5A 17 B3 05\n  \"XYZ\"\n" + time + "< 06\n  ACK\n";
    const std::string said = time + "< 16 45 52 52 30 31 30 17 B7 11\n  ERR 010 INVCALL\n";
    const std::string file = folder_ / "trace";
    struct Case {
        std::vector<std::string> arguments;
        std::string errors;
        std::string file;
    };
    // A file is written behind what is there.
    for (const auto& [arguments, errors, written] :
         {Case{{}, finding, ""},
          {{"--trace", "--clock", "2026-01-02T03:04:05"}, heard + finding + said, ""},
          {{"--clock", "2026-01-02T03:04:05", "--trace", file},
           finding,
           "before\n" + heard + time + "! unsupported: there is no command \"XYZ\"\n" + said}}) {
        folder_.file("trace", written.empty() ? "" : "before\n");
        Program program(arguments);
        Host host(program.ready());
        host.send("\x16XYZ\x17\xB3\x05");
        host.receive(11);
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_EQ(program.errors(), errors);
        EXPECT_EQ(text_of_file(file), written);
    }
}

// Everything that is drawn and every time that is told stands in this trace.
TEST_F(ProgramTest, DoesTheSameAgainWithTheSameSeedAndClock) {
    const auto traced = [&](const std::string& seed) {
        const std::string file = folder_ / seed;
        fs::remove(file);
        Program program({"--session", "lenient", "--seed", seed, "--clock", "2026-01-02T03:04:05Z", "--trace", file});
        Host host(program.ready());
        // 32 random bytes, a key for card numbers, and a session, under a key that needs no pair to be enciphered with.
        for (const std::string& request :
             {"GIX006"s + "0001 0002 805A"_hex, "DWK2632" + std::string(256, 'F') + "010001", kOpenSession}) {
            host.send(frame(request));
            const std::string head = host.receive(8);
            EXPECT_EQ(head.substr(2, 3), request.substr(0, 3));
            while (host.receive(1) != "\x17") {}
            EXPECT_EQ(host.receive(2).size(), 2U);
        }
        EXPECT_EQ(program.end(SIGTERM), 0);
        return text_of_file(file);
    };
    const std::string first = traced("7");
    EXPECT_GT(first.size(), 1500U);
    EXPECT_EQ(traced("7"), first);
    EXPECT_NE(traced("8"), first);
}

TEST(TraceFile, BeginsAnewBeforeItGrowsTooLargeAndIsForItsUserAlone) {
    TempDir folder;
    const std::string path = folder / "trace";
    TraceFile file(path, 100);
    for (int i = 0; i < 60; ++i) { file.write(fmt::format("{:02}{}\n", i, std::string(27, '.'))); }
    for (const auto& [end, first, last] :
         {std::tuple("", "57", "59"), {".1", "54", "56"}, {".2", "51", "53"}, {".3", "48", "50"}, {".4", "45", "47"}}) {
        const std::string text = text_of_file(path + end);
        EXPECT_EQ(text.size(), 90U) << end;
        EXPECT_EQ(text.substr(0, 2), first);
        EXPECT_EQ(text.substr(60, 2), last);
        EXPECT_EQ(fs::status(path + end).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    }
    EXPECT_FALSE(fs::exists(path + ".5"));
    file.write(std::string(500, 'x'));
    EXPECT_EQ(text_of_file(path), std::string(500, 'x'));
    TraceFile behind(path, 600);
    behind.write("y");
    EXPECT_EQ(text_of_file(path).size(), 501U);
    EXPECT_EQ(thrown([] { TraceFile("/dev/full", 10).write("x"); }), "/dev/full: No space left on device");
    EXPECT_EQ(thrown([&] { TraceFile(folder / "none/trace", 10).write("x"); }),
              folder / "none/trace" + ": No such file or directory");
}

}  // namespace
