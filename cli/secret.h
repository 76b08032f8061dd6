// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_SECRET_H
#define QUORVEL_CLI_SECRET_H

#include <string>

namespace quorvel::cli {

// Where a secret stands that is no argument: "-" is a line of standard input, which a terminal is asked for without
// echo, and "@FILE" the first line of a file.

// Whether it is one of these two.
[[nodiscard]] bool is_source(const std::string& source) noexcept;

// What stands there, which `what` names to the one who is asked; empty without a source. Throws Error, and Interrupted.
[[nodiscard]] std::string read_secret(const std::string& source, const std::string& what);

// What whoever is at the terminal answers. Throws Interrupted.
[[nodiscard]] std::string ask(const std::string& question);

}  // namespace quorvel::cli

#endif
