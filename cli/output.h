// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_OUTPUT_H
#define QUORVEL_CLI_OUTPUT_H

#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "cli/error.h"
#include "cli/value.h"
#include "wire/descriptor.h"

namespace quorvel::cli {

// Everything that the program says. Results go to standard output, as aligned text or as one JSON object; what happens
// meanwhile goes to standard error, as text only. Values become text here and nowhere else, so privacy is kept here.
class Output {
public:
    struct Style {
        bool json = false;
        // Card numbers and secrets as they are.
        bool reveal = false;
        // What crosses the line, beside the result.
        bool trace = false;
        std::string command = {};
    };

    explicit Output(Style style);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    [[nodiscard]] bool reveals() const noexcept { return style_.reveal; }

    // To the person in front of the PIN pad, while a command goes on.
    void notice(std::string_view text) const;
    // How far something that takes its time has come; shown on a terminal only.
    void progress(std::string_view label, uint64_t done, uint64_t total) const;

    // What crossed the line, or went wrong there.
    struct Traced {
        // When it did: "2026-07-14 09:15:02.125".
        std::string time;
        // > is from the host, < from the PIN pad, ! from neither.
        char arrow = '!';
        bool encrypted = false;
        Group words;
    };
    // Has it written to this file, too, behind what stands there. Throws Error.
    void trace_to(const std::string& path);
    [[nodiscard]] bool traces() const noexcept { return style_.trace || traceFile_; }
    // Part of the object with JSON, a line at once without.
    void trace(const Traced& traced);

    // Returns the exit code, which is another one where nobody got the result. Where standard error can be written, it
    // stands there then.
    Exit result(const Group& report, Exit exit, const Error* failure = nullptr) const;
    // One of many, as it comes: a line, also with JSON. Throws Error when nobody gets it.
    void line(const Group& report) const;
    // What is said where a signal must end the program before the command has; with the signal's own exit code if there
    // is no other.
    void last_words(const Group& report, std::optional<Exit> exit = {}) const;
    // The same of a text that is for no program to take apart, such as a completion script.
    Exit raw(const std::string& text) const;
    void failure(const Error& error) const;

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
    [[nodiscard]] Json json_of(const Error& error) const;
    [[nodiscard]] std::string last_text(const Group& report, Exit exit) const;
    [[nodiscard]] Json object_of(const Group& report, Exit exit, const Error* failure) const;
    void print(const Group& group, size_t indent, std::string& to) const;
    void print(const Table& table, size_t indent, std::string& to) const;

    // What `text` makes for an exit code.
    Exit deliver(const std::function<std::string(Exit)>& text, Exit exit) const;
    [[nodiscard]] std::string trace_line(const Traced& traced) const;
    // A line on standard error, below a bar that is not full yet.
    [[nodiscard]] std::string below_bar(std::string_view text) const;
    void say(std::string_view text) const;
    void say_at_last(std::string_view text) const;

    Style style_;
    std::optional<wire::Descriptor> traceFile_;
    mutable bool barOpen_ = false;
    // A list.
    std::unique_ptr<Json> traced_;
};

}  // namespace quorvel::cli

#endif
