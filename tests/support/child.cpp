// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/child.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    all.reserve(texts.size() + 1);
    for (std::string& text : texts) { all.push_back(text.data()); }
    all.push_back(nullptr);
    return all;
}

Child::Child(std::vector<std::string> command, std::optional<std::vector<std::string>> environment) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::array<int, 2> ends{};
    for (size_t i = 0; i < pipes_.size(); ++i) {
        std::array<int, 2> pipe{};
        EXPECT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
        pipes_[i] = pipe[0];
        ends[i] = pipe[1];
        posix_spawn_file_actions_adddup2(&actions, ends[i], i == 0 ? STDOUT_FILENO : STDERR_FILENO);
    }
    EXPECT_EQ(posix_spawn(&process_, command.front().c_str(), &actions, nullptr, pointers(command).data(),
                          environment ? pointers(*environment).data() : environ),
              0)
        << command.front();
    posix_spawn_file_actions_destroy(&actions);
    for (const int end : ends) { close(end); }
}

Child::~Child() {
    if (process_ > 0) { end(SIGKILL); }
}

std::string Child::line() {
    size_t end = said_[0].find('\n');
    while (end == std::string::npos && hear()) { end = said_[0].find('\n'); }
    std::string line = said_[0].substr(0, end);
    said_[0].erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

// A program that did not start has the number that stands for every process there is.
void Child::signal(int number) const {
    if (process_ > 0) { kill(process_, number); }
}

int Child::wait() {
    while (hear()) {}
    int status = -1;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// False when both ends are closed.
bool Child::hear() {
    std::array<pollfd, 2> polled{pollfd{pipes_[0], POLLIN, 0}, pollfd{pipes_[1], POLLIN, 0}};
    if (pipes_ == std::array{-1, -1} || poll(polled.data(), polled.size(), -1) < 0) { return false; }
    for (size_t i = 0; i < polled.size(); ++i) {
        if (polled[i].revents == 0) { continue; }
        std::array<char, 4096> bytes{};
        const ssize_t count = read(pipes_[i], bytes.data(), bytes.size());
        if (count > 0) { said_[i].append(bytes.data(), static_cast<size_t>(count)); }
        if (count > 0) { continue; }
        close(pipes_[i]);
        pipes_[i] = -1;
    }
    return true;
}

}  // namespace support
