// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <exception>
#include <optional>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "cli/command.h"
#include "cli/interrupt.h"
#include "cli/option.h"
#include "cli/stream.h"

namespace quorvel::cli {

namespace {

struct Globals {
    Settings settings;
    std::optional<std::string> config;
    bool json = false;
    bool reveal = false;
    bool trace = false;
    std::string traceFile;
};

void add_globals(CLI::App& app, Globals& globals) {
    app.add_option("--port", globals.settings.port, "The PIN pad's port")->type_name("PATH")->take_last();
    app.add_option("--config", globals.config, "Read this configuration file")->type_name("FILE");
    app.add_flag("--secure", globals.settings.secure, "Use an encrypted session");
    app.add_flag("--json", globals.json, "Print one JSON object");
    app.add_flag("--trace", globals.trace, "Tell in words what crosses the line");
    app.add_option("--trace-file", globals.traceFile, "Write the same to the end of this file")->type_name("FILE");
    app.add_flag("--force", globals.settings.force, "Use the port although another program has it open");
    app.add_flag("--reveal", globals.reveal, "Show card numbers, tracks and PIN blocks as they are");
    app.set_version_flag("--version", QUORVEL_VERSION);
}

// What was set up, and what to run if it is what the user names.
struct Ready {
    CLI::App* app;
    Run run;
    std::string_view name;
};

CLI::App* group_of(CLI::App& app, const std::string& name) {
    const auto known = app.get_subcommands([&](const CLI::App* each) { return each->get_name() == name; });
    if (!known.empty()) { return known.front(); }
    CLI::App* group = app.add_subcommand(name, std::string(group_summary(name)));
    group->require_subcommand(1)->fallthrough();
    return group;
}

std::vector<Ready> add_commands(CLI::App& app) {
    std::vector<Ready> ready;
    for (const Command& command : commands()) {
        const std::string name(command.name);
        const size_t blank = name.find(' ');
        CLI::App* parent = &app;
        if (blank != std::string::npos) {
            const std::string group = name.substr(0, blank);
            parent = group_of(app, group);
        }
        const std::string leaf = blank == std::string::npos ? name : name.substr(blank + 1);
        CLI::App* own = parent->add_subcommand(leaf, std::string(command.summary));
        own->fallthrough();
        CommandLine line(*own);
        ready.push_back({own, command.setup(line), command.name});
    }
    return ready;
}

const Ready* chosen(const std::vector<Ready>& ready) {
    for (const Ready& each : ready) {
        if (each.app->parsed()) { return &each; }
    }
    return nullptr;
}

Exit finish(const Output& output, const Outcome& outcome) {
    if (outcome.told) { return outcome.exit; }
    if (!outcome.raw.empty()) { return output.raw(outcome.raw); }
    if (outcome.failure == nullptr) { return output.result(outcome.report, outcome.exit); }
    try {
        std::rethrow_exception(outcome.failure);
    } catch (const Error& error) { return output.result(outcome.report, outcome.exit, &error); }
}

Exit run(const Ready& command, Globals& globals, Output& output, const CLI::App& app) {
    try {
        complete(globals.settings, globals.config);
        if (!globals.traceFile.empty()) { output.trace_to(globals.traceFile); }
        output.last_words({});
        Context context{globals.settings, output, app};
        return finish(output, command.run(context));
    } catch (const Error& error) {
        output.failure(error);
        return error.exit();
    } catch (const quorvel::Error& error) {
        output.failure(LibraryError(error));
        return LibraryError(error).exit();
    } catch (const std::exception& error) {
        output.failure(Error(Exit::kInternal, error.what()));
        return Exit::kInternal;
    }
}

// A program that asked for JSON gets it also for a command line that cannot be parsed.
Exit refuse(const CLI::App& app, const CLI::ParseError& error, bool json) {
    const Output output({.json = json});
    if (error.get_exit_code() == 0) {
        std::ostringstream asked;
        app.exit(error, asked, asked);
        return output.raw(asked.str());
    }
    output.failure(Error(Exit::kUsage, words_of(app, error), "See `quorvel --help` and `quorvel COMMAND --help`."));
    return Exit::kUsage;
}

bool asks_for_json(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--json") { return true; }
    }
    return false;
}

Exit run(int argc, char** argv) {
    Globals globals;
    CLI::App app("Drives an ABECS PIN pad from the command line.", "quorvel");
    app.require_subcommand(1);
    add_globals(app, globals);
    const std::vector<Ready> ready = add_commands(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) { return refuse(app, error, asks_for_json(argc, argv)); }
    const Ready* command = chosen(ready);
    Output output({.json = globals.json,
                   .reveal = globals.reveal,
                   .trace = globals.trace,
                   .command = std::string(command->name)});
    return run(*command, globals, output, app);
}

}  // namespace

}  // namespace quorvel::cli

int main(int argc, char** argv) {
    quorvel::cli::stream::secure();
    quorvel::cli::interrupt::watch();
    try {
        return static_cast<int>(quorvel::cli::run(argc, argv));
    } catch (const std::exception& error) {
        quorvel::cli::stream::write(STDERR_FILENO, std::string("quorvel: ") + error.what() + "\n");
        return static_cast<int>(quorvel::cli::Exit::kInternal);
    }
}
