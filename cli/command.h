// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_COMMAND_H
#define QUORVEL_CLI_COMMAND_H

#include <CLI/CLI.hpp>
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
    Run (*setup)(CLI::App& app);
};

[[nodiscard]] std::span<const Command> commands() noexcept;

// What a group of commands is about.
[[nodiscard]] std::string_view group_summary(std::string_view group) noexcept;

namespace setup {

Run ports(CLI::App& app);
Run doctor(CLI::App& app);
Run info(CLI::App& app);
Run gix(CLI::App& app);
Run display(CLI::App& app);
Run menu(CLI::App& app);
Run key(CLI::App& app);
Run event(CLI::App& app);
Run watch(CLI::App& app);
Run number(CLI::App& app);
Run remove(CLI::App& app);
Run emv(CLI::App& app);
Run tracks(CLI::App& app);
Run encipher(CLI::App& app);
Run command(CLI::App& app);
Run card(CLI::App& app);
Run sale(CLI::App& app);
Run pin(CLI::App& app);
Run tables_load(CLI::App& app);
Run tables_version(CLI::App& app);
Run media_put(CLI::App& app);
Run media_list(CLI::App& app);
Run media_show(CLI::App& app);
Run media_delete(CLI::App& app);
Run keys(CLI::App& app);
Run decode(CLI::App& app);
Run completion(CLI::App& app);

}  // namespace setup

}  // namespace quorvel::cli

#endif
