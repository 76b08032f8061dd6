// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/option.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>

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

}  // namespace

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

CLI::Validator one_of(const std::vector<std::string_view>& words) {
    const auto check = [words](const std::string& given) {
        return std::ranges::find(words, given) != words.end() ? std::string() : fmt::format("takes {}.", listed(words));
    };
    return {check, ""};
}

std::string alternatives(const std::vector<std::string_view>& words) {
    return fmt::format("{}", fmt::join(words, "|"));
}

CLI::Option* add_words(CLI::App& app, const std::string& name, std::vector<std::string>& given,
                       const std::vector<std::string_view>& words, const std::string& summary) {
    return app.add_option(name, given, summary)->check(one_of(words))->type_name(alternatives(words));
}

CLI::Option* add_word(CLI::App& app, const std::string& name, std::string& given,
                      const std::vector<std::string_view>& words, const std::string& summary) {
    return app.add_option(name, given, summary)->check(one_of(words))->type_name(alternatives(words));
}

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
