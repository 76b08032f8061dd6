// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
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
    expect_failure(run_json({"doctor", "--port", "/dev/nothing"}), 3, "port exists", "there is no /dev/nothing",
                   "quorvel ports");
    expect_failure(run_json({"doctor", "--port", file}), 3, "port opens", "tcgetattr() error: 25",
                   "It is no serial port");
}

TEST_F(DoctorTest, FindsThePortForbidden) {
    if (geteuid() == 0) { GTEST_SKIP() << "nothing is forbidden to root"; }
    const std::string path = folder_.file("forbidden", "");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    expect_failure(run_json({"doctor", "--port", path}), 3, "port opens", "Permission denied", "usermod -aG");
}

// The library gives the PIN pad six seconds. Who else has the port open is this process.
TEST_F(DoctorTest, FindsThatNobodyAnswersAndWhoElseHasThePort) {
    std::array<char, 64> name{};
    termios raw{};
    cfmakeraw(&raw);
    int master = -1;
    int slave = -1;
    ASSERT_EQ(openpty(&master, &slave, name.data(), &raw, nullptr), 0);
    const Json object = run_json({"doctor", "--port", name.data()});
    expect_failure(object, 4, "answer", "sending CAN", "Check that the PIN pad is on");
    const std::string holder = "process " + std::to_string(getpid());
    EXPECT_NE(object["result"]["checks"].dump().find(holder), std::string::npos) << object;
    for (const int end : {master, slave}) { close(end); }
}

using HealthyDoctorTest = PinPadToolTest;

TEST_F(HealthyDoctorTest, IsContentWithAPinPadThatAnswers) {
    const Json object = run_json({"doctor"});
    EXPECT_EQ(object["exit"], 0);
    EXPECT_EQ(object["result"]["verdict"], "The PIN pad is ready.");
    std::string checks;
    for (const Json& check : object["result"]["checks"]) { checks += check["check"].get<std::string>() + ";"; }
    EXPECT_EQ(checks, "port named;port opens;port is free;answer;session;versions;encrypted session;");
}

}  // namespace
