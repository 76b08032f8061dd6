// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/simulator/control_client.h"
#include "tests/simulator/host.h"
#include "tests/support/child.h"
#include "tests/support/wire.h"

namespace {

namespace fs = std::filesystem;

// quorvel-sim, run as a user does.
class Program : public support::Child {
public:
    explicit Program(std::vector<std::string> arguments) : Child(with_name(std::move(arguments))) {}

    // The path behind READY.
    std::string ready() {
        const std::string said = line();
        EXPECT_EQ(said.rfind("READY /dev/pts/", 0), 0U) << said;
        return said.size() > 6 ? said.substr(6) : "";
    }

private:
    static std::vector<std::string> with_name(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), QUORVEL_SIM);
        return arguments;
    }
};

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        std::string name = (fs::temp_directory_path() / "quorvel-sim-XXXXXX").string();
        folder_ = mkdtemp(name.data());
    }
    ~ProgramTest() override { fs::remove_all(folder_); }

    [[nodiscard]] std::string link() const { return (folder_ / "port").string(); }

    fs::path folder_;
};

TEST_F(ProgramTest, SaysWhereItIsAndEndsCleanlyOnASignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Program program({});
        Host host(program.ready());
        host.send("\x18");
        EXPECT_EQ(host.receive(1), "\x04");
        EXPECT_EQ(program.end(signal), 0);
        EXPECT_EQ(program.errors(), "");
    }
}

TEST_F(ProgramTest, KeepsALinkWhileItRunsAndTheLinkIsItsOwn) {
    fs::create_symlink(folder_ / "gone", link());
    for (const bool taken : {false, true}) {
        Program program({"--link", link()});
        const std::string path = program.ready();
        EXPECT_EQ(fs::read_symlink(link()), path);
        if (taken) fs::remove(link());
        if (taken) fs::create_symlink(folder_ / "other", link());
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_EQ(fs::is_symlink(link()), taken);
    }
    EXPECT_EQ(fs::read_symlink(link()), folder_ / "other");
}

TEST_F(ProgramTest, TakesNoNameThatSomethingElseHas) {
    std::ofstream(folder_ / "file") << "kept";
    fs::create_symlink(folder_ / "file", link());
    Program taken({"--link", (folder_ / "file").string()});
    EXPECT_EQ(taken.wait(), 2);
    EXPECT_EQ(taken.errors(), "quorvel-sim: " + (folder_ / "file").string() + " is there and no link\n");
    Program linked({"--link", link()});
    EXPECT_EQ(linked.wait(), 2);
    EXPECT_EQ(linked.errors(),
              "quorvel-sim: " + link() + " leads to " + (folder_ / "file").string() + ", which is there\n");
    EXPECT_EQ(linked.line(), "");
    EXPECT_EQ(fs::file_size(folder_ / "file"), 4U);
}

TEST_F(ProgramTest, TakesItsKeysFromAFile) {
    const std::string path = (folder_ / "keys.toml").string();
    std::ofstream(path) << "[[master]]\nstrength = \"des\"\nuse = \"pin\"\nindex = 7\nkey = \"0123456789ABCDEF\"\n";
    Program program({"--keys", path});
    Host host(program.ready());
    host.send("\x16GEN01302008K3000608\x17\x93\xC8");
    EXPECT_EQ(host.receive(20), "\x06\x16GEN000006003010\x17\x1F\xA4");
    std::ofstream(path) << "[[master]]";
    Program faulty({"--keys", path});
    EXPECT_EQ(faulty.wait(), 2);
    EXPECT_EQ(faulty.errors(), "quorvel-sim: " + path + ": line 1: master.strength: is missing\n");
    Program missing({"--keys", link()});
    EXPECT_EQ(missing.wait(), 2);
    EXPECT_EQ(missing.errors(), "quorvel-sim: " + link() + " cannot be read\n");
}

TEST_F(ProgramTest, IsControlledThroughASocketAndTellsWhereItReturns) {
    const std::string socket = (folder_ / "control").string();
    Program program({"--link", link(), "--control", socket, "--speed", "115200", "--seed", "7"});
    program.ready();
    ControlClient client(socket);
    EXPECT_EQ(client.ask(R"({"do":"hang-up","ms":1})"), R"({"ok":true})");
    const std::string path = program.ready();
    EXPECT_EQ(fs::read_symlink(link()), path);
    Host host(link());
    host.send("\x18");
    EXPECT_EQ(host.receive(1), "\x04");
    EXPECT_EQ(client.ask(R"({"do":"stop"})"), R"({"ok":true})");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.errors(), "");
    EXPECT_FALSE(fs::exists(socket));
}

TEST_F(ProgramTest, SaysWhatIsWrongWithAnOption) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"--speed", "fast"}, "--speed: Value fast not in range 300 to 4000000"},
        {{"--speed", "299"}, "--speed: Value 299 not in range 300 to 4000000"},
        {{"--seed", "-1"}, "Could not convert: --seed = -1"},
        {{"--control", folder_.string()}, "quorvel-sim: " + folder_.string() + " is there and no socket"},
    };
    for (const auto& [arguments, due] : cases) {
        Program program(arguments);
        EXPECT_NE(program.wait(), 0) << due;
        const std::string errors = program.errors();
        EXPECT_EQ(errors.substr(0, errors.find('\n')), due);
    }
}

class ScenarioProgramTest : public ProgramTest {
protected:
    std::string file(const std::string& text) {
        const std::string path = (folder_ / "mine.toml").string();
        std::ofstream(path) << text;
        return path;
    }

    static void say(Host& host, const std::string& id) {
        host.send(support::frame(id + "032" + std::string(32, 'X')));
        const std::string answer = "\x06" + support::frame(id + "000");
        EXPECT_EQ(host.receive(answer.size()), answer);
    }

    // A host that opens the line, sends these and closes it.
    static void visit(const std::string& port, const std::vector<std::string>& commands) {
        Host host(port);
        for (const std::string& id : commands) say(host, id);
    }
};

TEST_F(ScenarioProgramTest, EndsWithTheScenarioAndTellsHowItWent) {
    const std::string path =
        file("title = 'Mine'\n[[expect]]\ncommand = 'DSP'\n[[expect]]\ncommand = 'CLO'\nstatus = 'OK'\n");
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
        Program program({"--scenario", path, "--ends", ends});
        const std::string port = program.ready();
        for (const auto& commands : visits) visit(port, commands);
        EXPECT_EQ(ends == "stop" ? program.end(SIGTERM) : program.wait(), complaint.empty() ? 0 : 1) << ends;
        EXPECT_EQ(program.line(), complaint.empty() ? "scenario: ok" : "scenario: failed");
        EXPECT_EQ(program.line(), complaint);
    }
}

TEST_F(ScenarioProgramTest, SaysWhatItCannotPlay) {
    const std::string path = file("title = 'Mine'\n[[expect]]\n");
    for (const auto& [name, due] : {std::pair{path, path + ": line 2: expect.command: is missing"},
                                    {link(), "there is no scenario \"" + link()
                                                 + "\": no file, and none of those that "
                                                   "--list-scenarios names"}}) {
        Program program({"--scenario", name});
        EXPECT_EQ(program.wait(), 2);
        EXPECT_EQ(program.errors(), "quorvel-sim: " + due + "\n");
    }
    Program list({"--list-scenarios"});
    EXPECT_EQ(list.wait(), 0);
    EXPECT_EQ(list.line(), "acquirer-unreachable     Acquirer unreachable");
}

TEST_F(ProgramTest, TracesOnlyWhenAsked) {
    const std::string finding = "finding (unsupported): there is no command \"XYZ\"\n";
    const std::string trace = "> 16 58 59 5A 17 B3 05\n  \"XYZ\"\n< 06\n  ACK\n" + finding
                              + "< 16 45 52 52 30 31 30 17 B7 11\n  ERR 010 INVCALL\n";
    for (const bool asked : {false, true}) {
        Program program(asked ? std::vector<std::string>{"--trace"} : std::vector<std::string>{});
        Host host(program.ready());
        host.send("\x16XYZ\x17\xB3\x05");
        host.receive(11);
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_EQ(program.errors(), asked ? trace : finding);
    }
}

}  // namespace
