// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_TERMINAL_PROGRAM_H
#define QUORVEL_TESTS_SIMULATOR_TERMINAL_PROGRAM_H

#include <string>
#include <string_view>
#include <sys/types.h>
#include <termios.h>
#include <vector>

// quorvel-sim in a terminal of 100 columns and 32 rows, which the test plays. Only the program's standard output goes
// elsewhere.
class TerminalProgram {
public:
    TerminalProgram(std::vector<std::string> arguments, std::vector<std::string> environment);
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram&) = delete;
    TerminalProgram& operator=(const TerminalProgram&) = delete;

    // The next line of standard output.
    std::string line();

    void type(std::string_view keys);
    void resize(unsigned short rows, unsigned short columns);
    // Whether this is written after all that was awaited before; all of it is in seen().
    bool await(std::string_view text);
    [[nodiscard]] const std::string& seen() const noexcept { return seen_; }

    // Sends the signal, unless it is 0, and returns the exit status once the program has ended.
    int end(int signal = 0);
    // The terminal takes lines and shows what is typed, as it did before the program.
    [[nodiscard]] bool is_as_before() const;

private:
    bool read_more();

    int terminal_ = -1;
    int output_ = -1;
    pid_t process_ = -1;
    termios before_{};
    std::string seen_;
    size_t awaited_ = 0;
};

#endif
