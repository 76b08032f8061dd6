// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_ERROR_H
#define QUORVEL_CLI_ERROR_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace quorvel::cli {

// What the program ends with; quorvel(1) documents them.
enum class Exit : int {
    kOk = 0,
    kRefused = 1,   // the PIN pad answered with another status than OK
    kUsage = 2,     // the command line, the configuration or an input file is wrong
    kPort = 3,      // the port cannot be opened
    kLink = 4,      // the PIN pad does not answer, or not as it should
    kDeclined = 5,  // the sale was not approved
    kInternal = 70,
    kInterrupted = 130,
    kTerminated = 143,
};

// What went wrong and, where there is something to do about it, what.
class Error : public std::runtime_error {
public:
    Error(Exit exit, const std::string& text, std::string remedy = {})
        : std::runtime_error(text), exit_(exit), remedy_(std::move(remedy)) {}

    [[nodiscard]] Exit exit() const noexcept { return exit_; }
    [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }

private:
    Exit exit_;
    std::string remedy_;
};

// What the library raised; the text is without the code's name.
class LibraryError : public Error {
public:
    LibraryError(int16_t code, std::string_view message);

    [[nodiscard]] int16_t code() const noexcept { return code_; }

private:
    int16_t code_;
};

// A status that a command does not end well with.
class StatusError : public Error {
public:
    StatusError(std::string_view command, int32_t status);

    [[nodiscard]] int32_t status() const noexcept { return status_; }

private:
    int32_t status_;
};

// SIGINT or SIGTERM.
class Interrupted : public Error {
public:
    explicit Interrupted(Exit exit) : Error(exit, "Interrupted.") {}
};

}  // namespace quorvel::cli

#endif
