// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <csignal>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <utmp.h>

#include "tests/simulator/fixture.h"
#include "tests/support/child.h"

using namespace quorvel::sim;

namespace {

// quorvel-sim in a terminal, which the test plays. Only the program's standard output goes elsewhere.
class TerminalProgram {
public:
    TerminalProgram(std::vector<std::string> arguments, std::vector<std::string> environment) {
        const winsize size{32, 100, 0, 0};
        std::array<int, 2> output{};
        EXPECT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
        int slave = -1;
        EXPECT_EQ(openpty(&terminal_, &slave, nullptr, nullptr, &size), 0);
        tcgetattr(slave, &before_);
        const std::vector<char*> argv = support::pointers(arguments);
        process_ = fork();
        if (process_ == 0) {
            close(terminal_);
            login_tty(slave);
            dup2(output[1], STDOUT_FILENO);
            execve(argv[0], argv.data(), support::pointers(environment).data());
            _exit(127);
        }
        close(slave);
        close(output[1]);
        output_.emplace(output[0]);
    }
    ~TerminalProgram() {
        if (process_ > 0) { end(SIGKILL); }
        close(terminal_);
    }
    TerminalProgram(TerminalProgram&&) = delete;

    // The next line of standard output.
    std::string line() { return output_->line(); }

    void type(std::string_view keys) const {
        EXPECT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }
    void resize(unsigned short rows, unsigned short columns) const {
        const winsize size{rows, columns, 0, 0};
        EXPECT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
    }

    // Whether this is written after all that was awaited before; all of it is in seen().
    bool await(std::string_view text) {
        size_t found = seen_.find(text, awaited_);
        while (found == std::string::npos && read_more()) { found = seen_.find(text, awaited_); }
        if (found != std::string::npos) { awaited_ = found + text.size(); }
        return found != std::string::npos;
    }
    [[nodiscard]] const std::string& seen() const { return seen_; }

    // Sends the signal, unless it is 0, and returns the exit status. Who writes to a terminal that nobody reads does
    // not end, so it is read until it is closed.
    int end(int signal = 0) {
        if (signal != 0 && process_ > 0) { kill(process_, signal); }
        while (read_more()) {}
        int status = -1;
        waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // The terminal takes lines and shows what is typed, as it did before the program.
    [[nodiscard]] bool is_as_before() const {
        termios now{};
        EXPECT_EQ(tcgetattr(terminal_, &now), 0);
        return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag && now.c_oflag == before_.c_oflag;
    }

private:
    // False when nothing comes, or nothing can come any more.
    bool read_more() {
        std::array<char, 4096> bytes{};
        pollfd polled{terminal_, POLLIN, 0};
        const ssize_t count = poll(&polled, 1, 20000) > 0 ? read(terminal_, bytes.data(), bytes.size()) : 0;
        if (count > 0) { seen_.append(bytes.data(), static_cast<size_t>(count)); }
        return count > 0;
    }

    int terminal_ = -1;
    std::optional<End> output_;
    pid_t process_ = -1;
    termios before_{};
    std::string seen_;
    size_t awaited_ = 0;
};

TEST(FaceProgram, LetsAPersonPlayTheCardholderAndLeavesTheTerminalAsItWas) {
    for (const auto& [term, locale, edge, leaving, signal] : {std::tuple("xterm-256color"s, "C.UTF-8"s, "┌─", "q", 0),
                                                              {"xterm", "C", "+-", "\x03", 0},
                                                              {"vt100", "C.UTF-8", "┌─", "", SIGTERM}}) {
        SCOPED_TRACE(term);
        TerminalProgram program({QUORVEL_SIM, "--face", "--trace"}, {"TERM=" + term, "LC_ALL=" + locale});
        const std::string ready = program.line();
        ASSERT_TRUE(ready.starts_with("READY /dev/pts/")) << ready;
        EXPECT_TRUE(program.await(ready.substr(6)));
        EXPECT_FALSE(program.is_as_before());
        Host host(ready.substr(6));
        host.send(kOpn);
        EXPECT_EQ(host.receive(11), kAck + kOpnDone);
        host.send(frame("DSP032" + padded("CART\xC3O", 32)));
        EXPECT_TRUE(program.await(locale == "C" ? "CARTAO" : "CARTÃO")) << program.seen();
        EXPECT_EQ(host.receive(11), kAck + frame("DSP000"));
        host.send(frame("GKY"));
        EXPECT_EQ(host.receive(1), kAck);
        // A function key, whose sequence begins like the key that stands for "cancel".
        program.type("\x1BOR");
        EXPECT_EQ(host.receive(10), frame("GKY006"));
        EXPECT_TRUE(program.await("GKY 006"));
        program.resize(12, 40);
        EXPECT_TRUE(program.await("findings: 0")) << program.seen();
        program.type(leaving);
        EXPECT_EQ(program.end(signal), 0);
        EXPECT_TRUE(program.is_as_before());
        EXPECT_NE(program.seen().find(edge), std::string::npos);
        const bool onlyAscii = std::ranges::all_of(program.seen(), [](char byte) { return (byte & 0x80) == 0; });
        EXPECT_EQ(onlyAscii, locale == "C");
    }
}

TEST(FaceProgram, SaysThatATerminalCannotShowIt) {
    for (const std::string term : {"dumb", "nonesuch"}) {
        TerminalProgram program({QUORVEL_SIM, "--face"}, {"TERM=" + term});
        EXPECT_TRUE(
            program.await("quorvel-sim: the terminal cannot show a face: TERM names none that moves its cursor"));
        EXPECT_EQ(program.end(), 2);
        EXPECT_EQ(program.line(), "");
        EXPECT_TRUE(program.is_as_before());
    }
}

}  // namespace
