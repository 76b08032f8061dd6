// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/secret.h"

#include <cerrno>
#include <fmt/format.h>
#include <fstream>
#include <termios.h>
#include <unistd.h>

#include "cli/error.h"
#include "cli/interrupt.h"
#include "cli/stream.h"

namespace quorvel::cli {

namespace {

// While one lives, a terminal at standard input shows nothing of what is typed.
class Silence {
public:
    Silence() {
        if (tcgetattr(STDIN_FILENO, &before_) != 0) { return; }
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silent_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) == 0;
    }
    ~Silence() {
        if (silent_) { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); }
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    termios before_{};
    bool silent_ = false;
};

// Byte by byte: the next line is the next secret's.
std::string input_line(const std::string& what) {
    std::string line;
    for (;;) {
        char c = 0;
        const ssize_t count = read(STDIN_FILENO, &c, 1);
        interrupt::check();
        if (count < 0 && errno == EINTR) { continue; }
        if (count <= 0 && line.empty()) {
            throw Error(Exit::kUsage, fmt::format("Standard input has no line with the {}.", what));
        }
        if (count <= 0 || c == '\n') { return line; }
        line += c;
    }
}

std::string asked(const std::string& what) {
    if (isatty(STDIN_FILENO) != 1) { return input_line(what); }
    const Silence silence;
    stream::write(STDERR_FILENO, fmt::format("The {}, which is not shown: ", what));
    std::string line = input_line(what);
    stream::write(STDERR_FILENO, "\n");
    return line;
}

std::string first_line(const std::string& path, const std::string& what) {
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line)) {
        throw Error(Exit::kUsage, fmt::format("The {} cannot be read from {}.", what, path));
    }
    return line;
}

}  // namespace

bool is_source(const std::string& source) noexcept {
    return source == "-" || (source.size() > 1 && source.front() == '@');
}

std::string read_secret(const std::string& source, const std::string& what) {
    if (source.empty()) { return ""; }
    std::string line = source == "-" ? asked(what) : first_line(source.substr(1), what);
    if (line.ends_with('\r')) { line.pop_back(); }
    return line;
}

std::string ask(const std::string& question) {
    stream::write(STDERR_FILENO, question);
    return input_line("answer");
}

}  // namespace quorvel::cli
