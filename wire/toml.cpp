// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/toml.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <sstream>

namespace quorvel::wire {

namespace {

bool is_ascii(char each) { return static_cast<unsigned char>(each) < 0x80; }

// Where a character that is not ASCII stands outside of quotes and comments, or first behind a line's continuation; the
// end where none does. In a text that breaks the rules of quotes it may be wrong: the parser refuses that.
size_t stray(std::string_view text) {
    size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    while (at < text.size() && is_ascii(text[at])) {
        const char quote = text[at];
        const std::string_view three = quote == '"' ? R"(""")" : "'''";
        const bool escapes = quote == '"';
        if (quote == '#') {
            at = std::min(text.find('\n', at), text.size());
        } else if (quote != '"' && quote != '\'') {
            ++at;
        } else if (!text.substr(at).starts_with(three)) {
            for (++at; at < text.size() && text[at] != quote; ++at) {
                if (text[at] == '\n') { return text.size(); }
                if (escapes && text[at] == '\\') { ++at; }
            }
            ++at;
        } else {
            bool continued = false;
            for (at += 3; at < text.size() && !text.substr(at).starts_with(three); ++at) {
                if (continued && !is_ascii(text[at])) { return at; }
                continued = continued && std::string_view(" \t\r\n").find(text[at]) != std::string_view::npos;
                if (!escapes || text[at] != '\\') { continue; }
                continued = at + 1 < text.size() && text[at + 1] != '\\' && text[at + 1] != '"';
                if (!continued) { ++at; }
            }
            // Up to two quotes before the closing ones are part of the text.
            const size_t most = std::min(at + 5, text.size());
            for (at += 3; at < most && text[at] == quote; ++at) {}
        }
    }
    return std::min(at, text.size());
}

}  // namespace

TomlError::TomlError(size_t line, std::string_view fault)
    : std::runtime_error(fmt::format("line {}: {}", line, fault)), line_(line), fault_(fault) {}

toml::table parse_toml(std::string_view text) {
    // The parser takes such characters for impossible where it looks for blanks, and what it then does is undefined.
    if (const size_t at = stray(text); at < text.size()) {
        throw TomlError(
            1 + static_cast<size_t>(std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(at), '\n')),
            "a character that is not ASCII outside of quotes and comments, or first in a continued line");
    }
    try {
        return toml::parse(text);
    } catch (const toml::parse_error& error) { throw TomlError(error.source().begin.line, error.description()); }
}

std::string text_of_file(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    // An empty file would count as one that cannot be copied.
    if (file.peek() != std::ifstream::traits_type::eof()) { text << file.rdbuf(); }
    if (file.fail() || text.fail()) { throw std::runtime_error(path + " cannot be read"); }
    return text.str();
}

}  // namespace quorvel::wire
