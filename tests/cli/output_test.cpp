// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/tool.h"

namespace {

using OutputTest = PinPadToolTest;

// Who reads nothing of it must not take it for done, and who can still be told gets it.
TEST_F(OutputTest, ALostResultIsNoSuccess) {
    const std::tuple<const char*, Arguments, int, const char*> cases[]{
        {">/dev/full", {"info"}, 74, "No space left on device. This is it:\nManufacturer"},
        {">/dev/full", {"info", "--json"}, 74, R"("serialNumber": "QV00000001")"},
        {">/dev/full", {"gix", "--json"}, 74, R"("exit": 74)"},
        {">/dev/full", {"--help"}, 74, "Usage: quorvel"},
        {">/dev/full", {"completion", "bash"}, 74, "complete -o filenames"},
        {">/dev/full", {"gix", "nonsense"}, 2, "There is no item"},
        {">/dev/full", {"gix", "nonsense", "--json"}, 2, "There is no item"},
        {">&-", {"info"}, 74, "Bad file descriptor"},
        {">/dev/full 2>/dev/full", {"info", "--trace"}, 74, ""},
        {">&- 2>&- <&-", {"info", "--trace"}, 74, ""},
        {"2>&-", {"info", "--trace"}, 0, ""},
    };
    for (const auto& [streams, arguments, exit, said] : cases) {
        const Ended ended = redirected(streams, arguments);
        EXPECT_EQ(ended.exit, exit) << streams << arguments.front() << ended.err;
        EXPECT_NE(ended.err.find(said), std::string::npos) << ended.err;
    }
    EXPECT_EQ(redirected("--trace-file /dev/full", {"info"}).exit, 0);
}

// Nobody empties this pipe, which is full after a part of the trace: what goes on at the PIN pad does not wait for it.
TEST_F(OutputTest, WhoReadsSlowlyHoldsNothingUp) {
    std::string file = "version 2026010100\n";
    for (int i = 100; i < 200; ++i) { file += "997103" + std::to_string(i).substr(1) + std::string(989, 'x') + "\n"; }
    const std::string pipe = folder_ / "pipe";
    const std::string load = "tables load " + folder_.file("long.tables", file);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Ended ended = redirected(load + " --trace 2<>" + pipe, {});
    EXPECT_EQ(ended.exit, 0);
    EXPECT_NE(ended.out.find("Loaded          yes"), std::string::npos) << ended.out;
}

TEST_F(OutputTest, ABarThatIsNotFullEndsItsLine) {
    std::array<char, 64> name{};
    int master = -1;
    int slave = -1;
    ASSERT_EQ(openpty(&master, &slave, name.data(), nullptr, nullptr), 0);
    pinPad_.inject({.kind = "status", .command = "TLR", .status = 40});
    EXPECT_EQ(redirected(std::string("2>") + name.data(), {"tables", "load", QUORVEL_TABLES}).exit, 1);
    std::string text;
    pollfd polled{master, POLLIN, 0};
    while (!text.ends_with("answered 040") && poll(&polled, 1, 5000) > 0) {
        char c = 0;
        ASSERT_EQ(read(master, &c, 1), 1);
        text += c;
    }
    EXPECT_NE(text.find("0%\r\nquorvel: TLR answered 040"), std::string::npos) << text;
    for (const int end : {master, slave}) { close(end); }
}

}  // namespace
