// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/terminal_program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include "tests/support/child.h"

namespace {

constexpr int patienceMs = 20000;

}  // namespace

TerminalProgram::TerminalProgram(std::vector<std::string> arguments, std::vector<std::string> environment) {
    arguments.insert(arguments.begin(), QUORVEL_SIM);
    const std::vector<char*> argv = support::pointers(arguments);
    const std::vector<char*> envp = support::pointers(environment);
    const winsize size{32, 100, 0, 0};
    std::array<int, 2> output{};
    EXPECT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
    int slave = -1;
    EXPECT_EQ(openpty(&terminal_, &slave, nullptr, nullptr, &size), 0);
    tcgetattr(slave, &before_);
    process_ = fork();
    if (process_ == 0) {
        close(terminal_);
        login_tty(slave);
        dup2(output[1], STDOUT_FILENO);
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    EXPECT_GT(process_, 0);
    close(slave);
    close(output[1]);
    output_ = output[0];
}

TerminalProgram::~TerminalProgram() {
    if (process_ > 0) end(SIGKILL);
    close(terminal_);
    close(output_);
}

std::string TerminalProgram::line() {
    std::string text;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) text.push_back(c);
    return text;
}

void TerminalProgram::type(std::string_view keys) {
    EXPECT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

void TerminalProgram::resize(unsigned short rows, unsigned short columns) {
    const winsize size{rows, columns, 0, 0};
    EXPECT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
}

bool TerminalProgram::await(std::string_view text) {
    size_t found = seen_.find(text, awaited_);
    while (found == std::string::npos && read_more()) found = seen_.find(text, awaited_);
    if (found == std::string::npos) return false;
    awaited_ = found + text.size();
    return true;
}

// False when nothing comes, or nothing can come any more.
bool TerminalProgram::read_more() {
    std::array<char, 4096> bytes{};
    pollfd polled{terminal_, POLLIN, 0};
    if (poll(&polled, 1, patienceMs) <= 0) return false;
    const ssize_t count = read(terminal_, bytes.data(), bytes.size());
    if (count > 0) seen_.append(bytes.data(), static_cast<size_t>(count));
    return count > 0;
}

// Who writes to a terminal that nobody reads does not end, so it is read until it is closed.
int TerminalProgram::end(int signal) {
    if (signal != 0) kill(process_, signal);
    while (read_more()) {}
    int status = -1;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool TerminalProgram::is_as_before() const {
    termios now{};
    if (tcgetattr(terminal_, &now) != 0) return false;
    return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag && now.c_oflag == before_.c_oflag;
}
