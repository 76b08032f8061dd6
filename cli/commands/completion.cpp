// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <memory>
#include <string>

#include "cli/command.h"

namespace quorvel::cli::setup {

namespace {

// "png|jpg|gif" as words of their own; nothing for what stands for something, like FILE.
std::string values_of(const CLI::Option& option) {
    std::string type = option.get_type_name();
    const bool listed = type.find('|') != std::string::npos
                        && std::ranges::none_of(type, [](unsigned char c) { return std::isupper(c) != 0; });
    if (!listed) { return ""; }
    std::ranges::replace(type, '|', ' ');
    return type;
}

// What may stand behind the words so far: commands, values and options.
std::string words_of(const CLI::App& app) {
    std::string words;
    const auto add = [&](const std::string& word) { words += (words.empty() || word.empty() ? "" : " ") + word; };
    for (const CLI::App* command : app.get_subcommands(nullptr)) { add(command->get_name()); }
    for (const CLI::App* each = &app; each != nullptr; each = each->get_parent()) {
        for (const CLI::Option* option : each->get_options()) {
            if (option->get_positional()) { add(values_of(*option)); }
            for (const std::string& name : option->get_lnames()) {
                if (words.find("--" + name) == std::string::npos) { add("--" + name); }
            }
        }
    }
    return words;
}

// The words behind an option that takes one of them, and those behind a command.
std::string cases(const CLI::App& app, const std::string& path) {
    std::string text;
    for (const CLI::Option* option : app.get_options()) {
        const std::string values = values_of(*option);
        for (const std::string& name : option->get_lnames()) {
            if (!values.empty()) { text += fmt::format("    '{} --{}') words='{}' ;;\n", path, name, values); }
        }
    }
    for (const CLI::App* command : app.get_subcommands(nullptr)) {
        text += cases(*command, path.empty() ? command->get_name() : path + " " + command->get_name());
    }
    return text + fmt::format("    '{} '*) words='{}' ;;\n", path, words_of(app));
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
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}} path='' word next words
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        next="${{path:+$path }}$word"
        case "{paths}|" in *"|$next|"*) path=$next ;; esac
    done
    case "$path $previous" in
    *' --port') words=$(compgen -G '/dev/ttyUSB*'; compgen -G '/dev/ttyACM*'; compgen -G '/dev/ttyS*') ;;
    *' --config'|*' --trace-file'|*' --tables'|*' --file') words='' ;;
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

Run completion(CommandLine& line) {
    const auto shell = std::make_shared<std::string>();
    line.word("shell", *shell, {"bash", "zsh"}, "For this shell").required();
    return [shell](Context& context) { return run_completion(context, *shell); };
}

}  // namespace quorvel::cli::setup
