// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <memory>
#include <string>

#include "cli/command.h"

namespace quorvel::cli::setup {

namespace {

// What may stand behind the words so far: options and the names of commands.
std::string words_of(const CLI::App& app, bool withGlobals) {
    std::string words;
    const auto add = [&](const std::string& word) { words += (words.empty() ? "" : " ") + word; };
    for (const CLI::App* command : app.get_subcommands(nullptr)) { add(command->get_name()); }
    for (const CLI::App* each = &app; each != nullptr; each = withGlobals ? each->get_parent() : nullptr) {
        for (const CLI::Option* option : each->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                if (words.find("--" + name) == std::string::npos) { add("--" + name); }
            }
        }
    }
    return words;
}

std::string cases(const CLI::App& app, const std::string& path) {
    std::string text = fmt::format("        '{}') words='{}' ;;\n", path, words_of(app, true));
    for (const CLI::App* command : app.get_subcommands(nullptr)) {
        text += cases(*command, path.empty() ? command->get_name() : path + " " + command->get_name());
    }
    return text;
}

// Every command's path, for telling commands from their arguments.
std::string paths(const CLI::App& app, const std::string& path) {
    std::string text;
    for (const CLI::App* command : app.get_subcommands(nullptr)) {
        const std::string own = path.empty() ? command->get_name() : path + " " + command->get_name();
        text += "|" + own + paths(*command, own);
    }
    return text;
}

constexpr std::string_view kBash = R"(# bash completion of quorvel
_quorvel() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} path='' word next words
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        next="${{path:+$path }}$word"
        case "{paths}|" in *"|$next|"*) path=$next ;; esac
    done
    case "$path" in
{cases}    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [ "${{#COMPREPLY[@]}}" -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}}
complete -o filenames -F _quorvel quorvel
)";

// zsh runs the other one.
constexpr std::string_view kZsh = R"(#compdef quorvel
autoload -U +X bashcompinit && bashcompinit
)";

Outcome run_completion(const Context& context, const std::string& shell) {
    const std::string script =
        fmt::format(kBash, fmt::arg("paths", paths(context.app, "")), fmt::arg("cases", cases(context.app, "")));
    return {.raw = shell == "zsh" ? std::string(kZsh) + script : script};
}

}  // namespace

Run completion(CLI::App& app) {
    const auto shell = std::make_shared<std::string>();
    app.add_option("shell", *shell, "bash or zsh")->required()->check(CLI::IsMember({"bash", "zsh"}));
    return [shell](Context& context) { return run_completion(context, *shell); };
}

}  // namespace quorvel::cli::setup
