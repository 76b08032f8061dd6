// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/option.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/secret.h"

namespace quorvel::cli {

namespace {

// "approves, declines or unreachable".
std::string listed(const std::vector<std::string_view>& words) {
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + std::string(words[i]);
    }
    return text;
}

// Words that are no command and no option of it, unless they might be private: a card number, for one.
std::string extra_words(const std::string& first) {
    const bool named = std::ranges::none_of(first, [](unsigned char c) { return std::isdigit(c) != 0; });
    return named ? fmt::format("There is no command or option '{}' here.", first) : "An argument was not expected.";
}

// Refuses all that is no whole number from `lowest` to `highest`.
CLI::Validator number_between(int lowest, int highest) {
    const auto check = [lowest, highest](const std::string& given) {
        int number = 0;
        const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), number);
        const bool whole = error == std::errc() && end == given.data() + given.size();
        return whole && number >= lowest && number <= highest
                   ? std::string()
                   : fmt::format("takes a number from {} to {}.", lowest, highest);
    };
    return {check, ""};
}

// Refuses all that is none of these.
CLI::Validator one_of(const std::vector<std::string_view>& words) {
    const auto check = [words](const std::string& given) {
        return std::ranges::find(words, given) != words.end() ? std::string() : fmt::format("takes {}.", listed(words));
    };
    return {check, ""};
}

CLI::Validator secret_source() {
    static constexpr std::string_view kDirect =
        "takes no value itself, as other programs can see it: give - for standard input, or @FILE.";
    const auto check = [](const std::string& given) { return is_source(given) ? std::string() : std::string(kDirect); };
    return {check, ""};
}

// "mk-des|mk-tdes", which stands in the help and is what the completions complete.
std::string alternatives(const std::vector<std::string_view>& words) {
    return fmt::format("{}", fmt::join(words, "|"));
}

}  // namespace

CommandLine::Option& CommandLine::Option::required() {
    option_->required();
    return *this;
}

CommandLine::Option& CommandLine::Option::count(int fewest, int most) {
    option_->expected(fewest, most);
    return *this;
}

CommandLine::Option& CommandLine::Option::shows(const std::string& before) {
    option_->default_str(before);
    return *this;
}

CommandLine::Option CommandLine::text(const std::string& name, std::string& value, const char* type,
                                      const std::string& summary) {
    return Option(app_.add_option(name, value, summary)->type_name(type));
}

CommandLine::Option CommandLine::text(const std::string& name, std::vector<std::string>& values, const char* type,
                                      const std::string& summary) {
    return Option(app_.add_option(name, values, summary)->type_name(type));
}

void CommandLine::flag(const std::string& name, bool& value, const std::string& summary) {
    app_.add_flag(name, value, summary);
}

void CommandLine::numbers(const std::string& name, std::vector<int>& values, const char* type,
                          const std::string& summary, int lowest, int highest) {
    const std::vector<int> before = values;
    app_.add_option(name, values, summary)
        ->check(number_between(lowest, highest))
        ->type_name(type)
        ->default_val(before);
}

CommandLine::Option CommandLine::word(const std::string& name, std::string& given,
                                      const std::vector<std::string_view>& words, const std::string& summary) {
    return Option(app_.add_option(name, given, summary)->check(one_of(words))->type_name(alternatives(words)));
}

void CommandLine::words(const std::string& name, std::vector<std::string>& given,
                        const std::vector<std::string_view>& words, const std::string& summary) {
    app_.add_option(name, given, summary)->check(one_of(words))->type_name(alternatives(words));
}

void CommandLine::secret(const std::string& name, std::string& source, const std::string& summary) {
    app_.add_option(name, source, summary)->check(secret_source())->type_name("-|@FILE");
}

void CommandLine::add_number(const std::string& name, const std::string& summary, const char* type, int lowest,
                             int highest, const std::function<void(int)>& take) {
    app_.add_option_function<int>(name, take, summary)->check(number_between(lowest, highest))->type_name(type);
}

void CommandLine::add_number(const std::string& name, const std::string& summary, const char* type, int lowest,
                             int highest, const std::function<void(int)>& take, int before) {
    app_.add_option_function<int>(name, take, summary)
        ->check(number_between(lowest, highest))
        ->type_name(type)
        ->default_str(std::to_string(before));
}

void CommandLine::add_choice(const std::string& name, const std::string& summary,
                             const std::vector<std::string_view>& words, const std::string& before,
                             const std::function<void(const std::string&)>& take) {
    app_.add_option_function<std::string>(name, take, summary)
        ->check(one_of(words))
        ->type_name(alternatives(words))
        ->default_str(before);
}

std::vector<std::string> split_words(const std::string& line) { return CLI::detail::split_up(line); }

std::string words_of(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> extras = app.remaining(true);
    if (!extras.empty()) { return extra_words(extras.front()); }
    std::string text = error.what();
    const size_t behindName = text.find(": ");
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr && text.ends_with(" missing")) {
        return fmt::format("{} needs a value.", text.substr(0, behindName));
    }
    // "--timeout: takes a number" reads better without the colon.
    if (behindName != std::string::npos && text.substr(behindName + 2).starts_with("takes ")) {
        return text.substr(0, behindName) + text.substr(behindName + 1);
    }
    return text;
}

}  // namespace quorvel::cli
