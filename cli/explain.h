// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_EXPLAIN_H
#define QUORVEL_CLI_EXPLAIN_H

#include <cstdint>
#include <string_view>

#include "cli/error.h"

namespace quorvel::cli {

// A status for people who do not know it by heart.
struct StatusMeaning {
    int32_t code;
    std::string_view name;
    std::string_view meaning;
    // Empty when there is nothing to do.
    std::string_view remedy;
};

[[nodiscard]] StatusMeaning explain_status(int32_t code) noexcept;

// The exit code and the remedy of what the library raised.
struct ErrorMeaning {
    ErrorCode code;
    Exit exit;
    std::string_view remedy;
};

[[nodiscard]] ErrorMeaning explain_error(ErrorCode code) noexcept;

}  // namespace quorvel::cli

#endif
