// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_OPTION_H
#define QUORVEL_CLI_OPTION_H

#include <concepts>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "wire/named.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser's
class App;
class Option;
class ParseError;
}  // namespace CLI

namespace quorvel::cli {

// What a command's line may say. Help and errors are words for users; what was given is not repeated, as it may be
// private. The parser stands behind this and not in it: reading it is most of what a command's source would cost.
class CommandLine {
public:
    // One of its options, or without dashes in its name one of its arguments.
    class Option {
    public:
        explicit Option(CLI::Option* option) noexcept : option_(option) {}

        Option& required();
        // From so many to so many values.
        Option& count(int fewest, int most);
        // The help tells what the variable holds already.
        Option& shows(const std::string& before);

    private:
        CLI::Option* option_;
    };

    explicit CommandLine(CLI::App& app) noexcept : app_(app) {}

    Option text(const std::string& name, std::string& value, const char* type, const std::string& summary);
    Option text(const std::string& name, std::vector<std::string>& values, const char* type,
                const std::string& summary);
    void flag(const std::string& name, bool& value, const std::string& summary);
    // Any number of numbers in a range; what is there already are those for none.
    void numbers(const std::string& name, std::vector<int>& values, const char* type, const std::string& summary,
                 int lowest, int highest);

    // A number in a range; what it holds already is its default.
    template <typename Number>
    void number(const std::string& name, Number& number, const std::string& summary, const char* type, int lowest = 0,
                int highest = 255) {
        const auto take = [&number](int given) { number = static_cast<Number>(given); };
        if constexpr (std::integral<Number>) { return add_number(name, summary, type, lowest, highest, take, number); }
        add_number(name, summary, type, lowest, highest, take);
    }

    template <typename Value>
    using Choices = std::span<const wire::Named<Value>>;

    // One of some words; the one for what the value is already is the default.
    template <typename Value>
    void choice(const std::string& name, Value& value, Choices<Value> choices, const std::string& summary) {
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
        add_choice(name, summary, words, chosen, take);
    }

    // Of some words exactly one, or any number.
    Option word(const std::string& name, std::string& given, const std::vector<std::string_view>& words,
                const std::string& summary);
    void words(const std::string& name, std::vector<std::string>& given, const std::vector<std::string_view>& words,
               const std::string& summary);

    // Every program on the machine sees the arguments of every other, so what is secret is not given as one: only where
    // it stands, as read_secret() takes it.
    void secret(const std::string& name, std::string& source, const std::string& summary);

private:
    void add_number(const std::string& name, const std::string& summary, const char* type, int lowest, int highest,
                    const std::function<void(int)>& take);
    void add_number(const std::string& name, const std::string& summary, const char* type, int lowest, int highest,
                    const std::function<void(int)>& take, int before);
    void add_choice(const std::string& name, const std::string& summary, const std::vector<std::string_view>& words,
                    const std::string& before, const std::function<void(const std::string&)>& take);

    CLI::App& app_;
};

// The words of a line as a shell would tell them apart.
[[nodiscard]] std::vector<std::string> split_words(const std::string& line);

// What is wrong with a command line, in one sentence.
[[nodiscard]] std::string words_of(const CLI::App& app, const CLI::ParseError& error);

}  // namespace quorvel::cli

#endif
