// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_OPTION_H
#define QUORVEL_CLI_OPTION_H

#include <CLI/CLI.hpp>
#include <concepts>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvel::cli {

// Options whose help and whose errors are words for users. What was given is not repeated: it may be private.

// Refuses all that is no whole number from `lowest` to `highest`.
[[nodiscard]] CLI::Validator number_between(int lowest, int highest);
// Refuses all that is none of these.
[[nodiscard]] CLI::Validator one_of(const std::vector<std::string_view>& words);
// "mk-des|mk-tdes", which stands in the help and is what the completions complete.
[[nodiscard]] std::string alternatives(const std::vector<std::string_view>& words);

// An option that takes a number in a range; what it holds already is its default.
template <typename Number>
CLI::Option* add_number(CLI::App& app, const std::string& name, Number& number, const std::string& summary,
                        const char* type, int lowest = 0, int highest = 255) {
    CLI::Option* option =
        app.add_option(name, number, summary)->check(number_between(lowest, highest))->type_name(type);
    if constexpr (std::integral<Number>) { option->default_str(std::to_string(number)); }
    return option;
}

template <typename Value>
using Choices = std::span<const std::pair<std::string_view, Value>>;

// An option that takes one of some words; the one for what it holds already is its default.
template <typename Value>
CLI::Option* add_choice(CLI::App& app, const std::string& name, Value& value, Choices<Value> choices,
                        const std::string& summary) {
    std::vector<std::string_view> words;
    std::string chosen;
    for (const auto& [word, meaning] : choices) {
        words.push_back(word);
        if (meaning == value) { chosen = word; }
    }
    const auto take = [&value, choices](const std::string& given) {
        for (const auto& [word, meaning] : choices) {
            if (word == given) { value = meaning; }
        }
    };
    return app.add_option_function<std::string>(name, take, summary)
        ->check(one_of(words))
        ->type_name(alternatives(words))
        ->default_str(chosen);
}

// Of some words any number, or exactly one.
CLI::Option* add_words(CLI::App& app, const std::string& name, std::vector<std::string>& given,
                       const std::vector<std::string_view>& words, const std::string& summary);
CLI::Option* add_word(CLI::App& app, const std::string& name, std::string& given,
                      const std::vector<std::string_view>& words, const std::string& summary);

// What is wrong with a command line, in one sentence.
[[nodiscard]] std::string words_of(const CLI::App& app, const CLI::ParseError& error);

}  // namespace quorvel::cli

#endif
