// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_SECRET_H
#define QUORVEL_CLI_SECRET_H

#include <CLI/CLI.hpp>
#include <string>

namespace quorvel::cli {

// Every program on the machine sees the arguments of every other, so what is secret is not given as one: "-" stands for
// a line of standard input, which a terminal is asked for without echo, and "@FILE" for the first line of a file.
CLI::Option* add_secret(CLI::App& app, const std::string& name, std::string& source, const std::string& summary);

// Whether it is one of these two.
[[nodiscard]] bool is_source(const std::string& source) noexcept;

// What stands there, which `what` names to the one who is asked; empty without a source. Throws Error, and Interrupted.
[[nodiscard]] std::string read_secret(const std::string& source, const std::string& what);

// What whoever is at the terminal answers. Throws Interrupted.
[[nodiscard]] std::string ask(const std::string& question);

}  // namespace quorvel::cli

#endif
