// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/error.h"

#include <fmt/format.h>

#include "cli/explain.h"

namespace quorvel::cli {

namespace {

std::string status_text(std::string_view command, int32_t status) {
    const StatusMeaning meaning = explain_status(status);
    return fmt::format("{} answered {:03} {}: {}.", command, status, meaning.name, meaning.meaning);
}

// "[KOR_RESULT_IO_ERROR] read() error: 5" without what stands in brackets.
std::string detail_of(std::string_view message) {
    const size_t end = message.starts_with('[') ? message.find("] ") : std::string_view::npos;
    return std::string(end == std::string_view::npos ? message : message.substr(end + 2));
}

}  // namespace

LibraryError::LibraryError(int16_t code, std::string_view message)
    : Error(explain_error(code).exit, detail_of(message), std::string(explain_error(code).remedy)), code_(code) {}

StatusError::StatusError(std::string_view command, int32_t status)
    : Error(Exit::kRefused, status_text(command, status), std::string(explain_status(status).remedy)),
      status_(status) {}

}  // namespace quorvel::cli
