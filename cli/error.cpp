// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/error.h"

#include <cerrno>
#include <charconv>
#include <fmt/format.h>
#include <optional>
#include <system_error>

#include "cli/explain.h"
#include "cli/interrupt.h"

namespace quorvel::cli {

namespace {

std::string status_text(std::string_view command, quorvel::Status status) {
    const StatusMeaning meaning = explain_status(status.code());
    return fmt::format("{} answered {:03} {}: {}.", command, meaning.code, meaning.name, meaning.meaning);
}

// The number of the system's error at the end of "read() error: 5", if there is one.
std::optional<int> system_error_of(std::string_view detail) {
    constexpr std::string_view kBefore = ") error: ";
    const size_t at = detail.find(kBefore);
    int error = 0;
    if (at == std::string_view::npos) { return std::nullopt; }
    const std::string_view digits = detail.substr(at + kBefore.size());
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), error);
    return fault == std::errc() && end == digits.data() + digits.size() ? std::optional(error) : std::nullopt;
}

// The detail in words where it is a call of the system and a number.
std::string words_for(std::string_view detail) {
    const auto error = system_error_of(detail);
    if (!error) { return std::string(detail); }
    const bool gone = *error == EIO || *error == ENXIO || *error == ENODEV;
    return fmt::format("The port {}: {}", gone ? "has gone away" : "fails", std::generic_category().message(*error));
}

}  // namespace

LibraryError::LibraryError(const quorvel::Error& raised)
    : Error(explain_error(raised.code()).exit, words_for(raised.detail()),
            std::string(explain_error(raised.code()).remedy)),
      code_(raised.code()) {}

StatusError::StatusError(std::string_view command, quorvel::Status status)
    : StatusError(command, status, std::string(explain_status(status.code()).remedy)) {}

StatusError::StatusError(std::string_view command, quorvel::Status status, std::string remedy)
    : Error(Exit::kRefused, status_text(command, status), std::move(remedy)), status_(status) {}

LateError::LateError(std::string_view command)
    : Error(Exit::kLink, fmt::format("{} was not answered in time, and was cancelled.", command),
            "Where somebody was to act: be at the PIN pad, or wait longer with --timeout. Else restart the PIN pad.") {}

void explain(const quorvel::Error& error, std::string_view command) {
    if (const auto* refused = dynamic_cast<const Refused*>(&error)) {
        throw StatusError(refused->command(), refused->status());
    }
    const auto* ended = dynamic_cast<const Ended*>(&error);
    if (ended != nullptr && ended->why() == Ended::Why::deadline) { throw LateError(command); }
    // What a signal has cut short need not say what that looked like.
    interrupt::check();
    throw LibraryError(error);
}

}  // namespace quorvel::cli
