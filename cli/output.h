// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_OUTPUT_H
#define QUORVEL_CLI_OUTPUT_H

#include <cstdint>
#include <exception>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/error.h"
#include "cli/value.h"

namespace quorvel::cli {

// Everything that the program says. Results go to standard output, as aligned text or as one JSON object; what happens
// meanwhile goes to standard error, as text only. Values become text here and nowhere else, so privacy is kept here.
class Output {
public:
    struct Style {
        bool json = false;
        // Card numbers and secrets as they are.
        bool reveal = false;
        std::string command = {};
    };

    explicit Output(Style style) : style_(std::move(style)) {}

    [[nodiscard]] bool reveals() const noexcept { return style_.reveal; }

    // To the person in front of the PIN pad, while a command goes on.
    void notice(std::string_view text) const;
    // How far something that takes its time has come; shown on a terminal only.
    void progress(std::string_view label, uint64_t done, uint64_t total) const;

    // One frame, from any thread. Part of the object with JSON, a line at once without.
    void trace(char arrow, const Group& words);

    void result(const Group& report, Exit exit) const;
    void failure(const Error& error) const;
    // A text that is for no program to take apart, such as a completion script.
    static void raw(std::string_view text);

private:
    using Json = nlohmann::ordered_json;

    [[nodiscard]] std::string shown(const Pan& pan) const;
    [[nodiscard]] std::string shown(const Secret& secret) const;
    [[nodiscard]] std::string text_of(const Value& value) const;
    [[nodiscard]] std::string line_of(const Group& group) const;
    [[nodiscard]] Json json_of(const Value& value) const;
    [[nodiscard]] Json json_of(const Group& group) const;
    [[nodiscard]] Json json_of(const Table& table) const;
    [[nodiscard]] Json envelope(Exit exit) const;
    void print(const Group& group, size_t indent, std::string& to) const;
    void print(const Table& table, size_t indent, std::string& to) const;

    Style style_;
    std::mutex tracing_;
    Json traced_ = Json::array();
};

}  // namespace quorvel::cli

#endif
