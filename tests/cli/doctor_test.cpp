// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <pty.h>
#include <pwd.h>
#include <sys/stat.h>
#include <termios.h>
#include <thread>
#include <tuple>
#include <unistd.h>

#include "tests/cli/tool.h"

namespace {

using Json = nlohmann::json;

// The last check and what is to be done about it.
void expect_failure(const Json& object, int exit, const std::string& check, const std::string& found,
                    const std::string& remedy) {
    EXPECT_EQ(object["exit"], exit);
    const Json& last = object["result"]["checks"].back();
    EXPECT_EQ(last["check"], check);
    EXPECT_EQ(last["state"], "FAILED");
    EXPECT_NE(last.value("found", "").find(found), std::string::npos) << last;
    ASSERT_TRUE(object["result"].contains("remedies"));
    const Json& remedies = object["result"]["remedies"];
    EXPECT_NE(remedies.back().value("remedy", "").find(remedy), std::string::npos) << remedies;
}

using DoctorTest = ToolTest;

TEST_F(DoctorTest, FindsThatThereIsNoPort) {
    const std::string file = folder_.file("file");
    expect_failure(run_json({"doctor"}), 2, "port named", "no port is named", "QUORVEL_PORT");
    expect_failure(run_json({"doctor", "--port", "/dev/nothing"}), 3, "port exists", "No such port: /dev/nothing",
                   "quorvel ports");
    expect_failure(run_json({"doctor", "--port", file}), 3, "port opens", "is no serial port", "quorvel ports");
}

// A user who is in the group by the system's list, but not by what the session began with, has to log in again. Root,
// to whom nothing is forbidden, gives the port to others and becomes one of them.
TEST_F(DoctorTest, FindsThePortForbidden) {
    if (geteuid() != 0) { GTEST_SKIP() << "only root can give a port to somebody else"; }
    const passwd* member = getpwnam("man");
    ASSERT_TRUE(member != nullptr);
    for (const auto& [user, team, mode, remedy] : std::vector<std::tuple<uid_t, gid_t, mode_t, std::string>>{
             {65534, member->pw_gid, 0660, "Join the group and log in again: sudo usermod -aG man $USER"},
             {65534, member->pw_gid, 0640, "by a rule of udev"},
             {65534, 0, 0660, "by a rule of udev"},
             {member->pw_uid, member->pw_gid, 0660, "log out and in again"}}) {
        std::array<char, 64> port{};
        int master = -1;
        int slave = -1;
        ASSERT_EQ(openpty(&master, &slave, port.data(), nullptr, nullptr), 0);
        ASSERT_EQ(chown(port.data(), 0, team), 0);
        ASSERT_EQ(chmod(port.data(), mode), 0);
        support::Child tool({"/usr/bin/setpriv", "--reuid", std::to_string(user), "--regid", "65534", "--clear-groups",
                             QUORVEL_CLI, "doctor", "--json", "--port", port.data()});
        const int exit = tool.wait();
        expect_failure(Json::parse(tool.output()), exit, "port opens", "You may not open", remedy);
        EXPECT_EQ(exit, 3);
        for (const int end : {master, slave}) { close(end); }
    }
}

// The library gives the PIN pad six seconds, and fourteen to a line that never falls silent.
TEST_F(DoctorTest, TellsSilenceFromBabble) {
    for (const bool babbles : {false, true}) {
        std::array<char, 64> name{};
        termios raw{};
        cfmakeraw(&raw);
        int master = -1;
        int slave = -1;
        ASSERT_EQ(openpty(&master, &slave, name.data(), &raw, nullptr), 0);
        std::jthread other([&](const std::stop_token& stop) {
            while (babbles && !stop.stop_requested()) {
                EXPECT_EQ(write(master, "x", 1), 1);
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
        expect_failure(run_json({"doctor", "--port", name.data()}), 4, "answer",
                       babbles ? "the line is never silent: is this a PIN pad, at 19200?" : "sending CAN",
                       babbles ? "Unplug what sends there" : "Check that the PIN pad is on");
        other.request_stop();
        other.join();
        for (const int end : {master, slave}) { close(end); }
    }
}

using HealthyDoctorTest = PinPadToolTest;

TEST_F(HealthyDoctorTest, IsContentWithAPinPadThatAnswers) {
    const Json object = run_json({"doctor"});
    EXPECT_EQ(object["exit"], 0);
    EXPECT_EQ(object["result"]["verdict"], "The PIN pad is ready.");
    std::string checks;
    for (const Json& check : object["result"]["checks"]) { checks += check["check"].get<std::string>() + ";"; }
    EXPECT_EQ(checks, "port named;port is free;port opens;answer;session;versions;encrypted session;");
}

// Not even a look at a port that somebody else has open, who may be in the middle of a sale.
TEST_F(HealthyDoctorTest, LeavesAPortAloneThatSomebodyHolds) {
    support::Child till({"/bin/sh", "-c", "exec 3<>" + pinPad_.path() + "; echo held; exec sleep 60"});
    ASSERT_EQ(till.line(), "held");
    const Json doctor = run_json({"doctor"});
    expect_failure(doctor, 3, "port is free", "is held by sleep (process ", "--force");
    const Json info = run_json({"info"});
    EXPECT_EQ(info["exit"], 3);
    EXPECT_EQ(info["error"]["text"], doctor["result"]["checks"].back()["found"]);
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(run({"doctor", "--force"}).exit, 0);
}

}  // namespace
