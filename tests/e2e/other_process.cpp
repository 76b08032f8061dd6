// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/e2e/other_process.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

void OtherProcess::Side::send(const void* bytes, size_t size) {
    if (::send(fd_, bytes, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) { _exit(1); }
}

void OtherProcess::Side::receive(void* bytes, size_t size) {
    if (recv(fd_, bytes, size, MSG_WAITALL) != static_cast<ssize_t>(size)) { _exit(1); }
}

void OtherProcess::Side::pause() {
    char word = 'p';
    send(&word, 1);
    receive(&word, 1);
}

OtherProcess::OtherProcess(const std::function<void(Side&)>& act) {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    child_ = fork();
    if (child_ == 0) {
        close(ends[0]);
        Side side(ends[1]);
        act(side);
        _exit(0);
    }
    close(ends[1]);
    fd_ = ends[0];
}

OtherProcess::~OtherProcess() {
    close(fd_);
    waitpid(child_, nullptr, 0);
}

std::string OtherProcess::receive(size_t size) const {
    std::string bytes(size, '\0');
    const ssize_t got = recv(fd_, bytes.data(), size, MSG_WAITALL);
    bytes.resize(got == static_cast<ssize_t>(size) ? size : 0);
    return bytes;
}

void OtherProcess::send(const std::string& bytes) const {
    EXPECT_EQ(::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

std::vector<std::string> OtherProcess::memory() const {
    const std::string folder = "/proc/" + std::to_string(child_);
    const int memory = open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_GE(memory, 0);
    std::ifstream maps(folder + "/maps");
    std::vector<std::string> all;
    for (std::string line; std::getline(maps, line);) {
        if (line.find(" rw") == std::string::npos || line.ends_with("[vvar]")) { continue; }
        std::istringstream range(line);
        uintptr_t begin = 0;
        uintptr_t end = 0;
        char dash = 0;
        range >> std::hex >> begin >> dash >> end;
        std::string bytes(end - begin, '\0');
        const ssize_t got = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
        EXPECT_EQ(got, static_cast<ssize_t>(bytes.size())) << line;
        all.push_back(std::move(bytes));
    }
    close(memory);
    EXPECT_FALSE(all.empty());
    return all;
}
