// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_CHILD_H
#define QUORVEL_TESTS_SUPPORT_CHILD_H

#include <array>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace support {

// As exec() takes them; the texts must outlive what is returned.
std::vector<char*> pointers(std::vector<std::string>& texts);

// A program that runs as one of a user's does, with nothing to read. It is killed at the end if it has not ended.
class Child {
public:
    // The path of the program comes first. Without an environment it has this program's.
    explicit Child(std::vector<std::string> command, std::optional<std::vector<std::string>> environment = {});
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // The next one of its standard output; empty at the end.
    std::string line();
    void signal(int number) const;
    // Reads all that it still says. Its exit status; -1 when a signal has ended it.
    int wait();
    int end(int number) {
        signal(number);
        return wait();
    }

    // What it said, but for the lines that were read.
    [[nodiscard]] const std::string& output() const { return said_[0]; }
    [[nodiscard]] const std::string& errors() const { return said_[1]; }

private:
    bool hear();

    pid_t process_ = -1;
    // Standard output and standard error.
    std::array<int, 2> pipes_{-1, -1};
    std::array<std::string, 2> said_;
};

}  // namespace support

#endif
