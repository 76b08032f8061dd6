// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_ERROR_H
#define QUORVEL_CLI_ERROR_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "quorvel/quorvel.hpp"

namespace quorvel::cli {

// What the program ends with; quorvel(1) documents them.
enum class Exit : int {
    kOk = 0,
    kRefused = 1,   // the PIN pad answered with another status than OK
    kUsage = 2,     // the command line, the configuration or an input file is wrong
    kPort = 3,      // the port cannot be opened
    kLink = 4,      // the PIN pad does not answer, or not as it should
    kDeclined = 5,  // the sale was not approved
    kUnknown = 6,   // nobody knows whether the sale was approved
    kInternal = 70,
    kUnwritten = 74,  // the result could not be written
    kHungUp = 129,
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

// What the library raised, in words.
class LibraryError : public Error {
public:
    explicit LibraryError(const quorvel::Error& raised);

    [[nodiscard]] ErrorCode code() const noexcept { return code_; }

private:
    ErrorCode code_;
};

// A status that a command does not end well with.
class StatusError : public Error {
public:
    StatusError(std::string_view command, quorvel::Status status);
    // With something better to do about it than is known of the status.
    StatusError(std::string_view command, quorvel::Status status, std::string remedy);

    [[nodiscard]] quorvel::Status status() const noexcept { return status_; }

private:
    quorvel::Status status_;
};

// A wait that has lasted as long as it may.
class LateError : public Error {
public:
    explicit LateError(std::string_view command);
};

// A signal that asks the program to end.
class Interrupted : public Error {
public:
    explicit Interrupted(Exit exit) : Error(exit, "Interrupted.") {}
};

// Throws the one that stands for what the library's interface throws in the course of a command. Who ended a wait
// before its deadline was a signal.
[[noreturn]] void explain(const quorvel::Error& error, std::string_view command);

}  // namespace quorvel::cli

#endif
