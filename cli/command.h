// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_COMMAND_H
#define QUORVEL_CLI_COMMAND_H

#include <exception>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "cli/error.h"
#include "cli/option.h"
#include "cli/output.h"
#include "cli/settings.h"
#include "cli/value.h"

namespace quorvel::cli {

struct Context {
    const Settings& settings;
    Output& output;
    // All of the command line, for completions.
    const CLI::App& app;
};

// How a command ends that does not throw. A report with nothing in it prints nothing for people.
struct Outcome {
    Group report = {};
    Exit exit = Exit::kOk;
    // In place of the report, for what is no result but a text of its own.
    std::string raw = {};
    // Everything has been told line by line.
    bool told = false;
    // What went wrong, where the report tells what has come of it all the same.
    std::exception_ptr failure = nullptr;
};

using Run = std::function<Outcome(Context&)>;

struct Command {
    // "tables load" is the command load of the group tables.
    std::string_view name;
    std::string_view summary;
    // Adds the command's options and tells what to run once they are parsed.
    Run (*setup)(CommandLine& line);
};

[[nodiscard]] std::span<const Command> commands() noexcept;

// What a group of commands is about.
[[nodiscard]] std::string_view group_summary(std::string_view group) noexcept;

namespace setup {

Run ports(CommandLine& line);
Run doctor(CommandLine& line);
Run info(CommandLine& line);
Run gix(CommandLine& line);
Run display(CommandLine& line);
Run menu(CommandLine& line);
Run key(CommandLine& line);
Run event(CommandLine& line);
Run watch(CommandLine& line);
Run number(CommandLine& line);
Run remove(CommandLine& line);
Run emv(CommandLine& line);
Run tracks(CommandLine& line);
Run encipher(CommandLine& line);
Run command(CommandLine& line);
Run card(CommandLine& line);
Run sale(CommandLine& line);
Run pin(CommandLine& line);
Run tables_load(CommandLine& line);
Run tables_version(CommandLine& line);
Run media_put(CommandLine& line);
Run media_list(CommandLine& line);
Run media_show(CommandLine& line);
Run media_delete(CommandLine& line);
Run keys(CommandLine& line);
Run decode(CommandLine& line);
Run completion(CommandLine& line);

}  // namespace setup

}  // namespace quorvel::cli

#endif
