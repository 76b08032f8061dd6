// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_TILL_H
#define QUORVEL_SIMULATOR_EXAM_TILL_H

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/exam/outcome.h"

namespace quorvel::sim {
class TomlTable;
}

namespace quorvel::sim::exam {

// What the acquirer does that the till plays.
enum class Host { kApproves, kDeclines, kUnreachable, kLate };

// What a till can do; a case that needs more is not for it.
enum class Feature { kChip, kStripe, kContactless, kPin, kTables, kInterrupt, kEncrypted };

[[nodiscard]] std::string_view name_of(Host host) noexcept;
[[nodiscard]] std::string_view name_of(Feature feature) noexcept;

// What a program has said and how it ended; as a shell tells it, a signal's number above 128.
struct Ended {
    int exit = 0;
    std::string output;
};

// When an outcome is meant: the exit status is one of these, and a line of the output matches. One that asks for
// nothing is never meant.
struct Rule {
    std::set<int> exits = {};
    std::optional<std::regex> output = {};

    [[nodiscard]] bool is_met(const Ended& ended) const;
};

// What the till is to do in one run.
struct Order {
    std::string port;
    uint64_t cents = 0;
    Host host = Host::kApproves;
    bool encrypted = false;
    std::string number = {};
};

// A program that sells, and how it is spoken to. docs/exam.md describes the file.
struct Till {
    std::string title = "till";
    // With placeholders: {port}, {amount}, {cents}, {host}, {session}, {folder}.
    std::vector<std::string> command = {};
    std::set<Feature> takes{Feature::kChip, Feature::kPin};
    // Its own words. For what is not here it cannot play the acquirer.
    std::map<Host, std::string> hosts;
    // What stands for {session}, plain and encrypted.
    std::string plain = {};
    std::string encrypted = {};
    Rule paid{{0}};
    Rule notPaid{{5}};
    Rule unknown{{6}};
    Rule reversal;
    // How long one sale may last, whatever happens.
    std::chrono::seconds limit{60};
    // Where the file stands.
    std::string folder = ".";

    Till();

    [[nodiscard]] bool can(Feature feature) const { return takes.contains(feature); }
    // An argument of which placeholders leave nothing is left out.
    [[nodiscard]] std::vector<std::string> command_for(const Order& order) const;
    // QUORVEL_EXAM_PORT and so on.
    [[nodiscard]] std::vector<std::string> environment_for(const Order& order) const;

    // None when it says nothing that is known, or two things at once.
    [[nodiscard]] std::optional<Outcome> outcome_of(const Ended& ended) const;
    // In words, what it has said instead of one outcome.
    [[nodiscard]] std::string words_for(const Ended& ended) const;
    // Throws std::runtime_error for an argument that looks like a placeholder and is none.
    void check_command() const;

    // Both throw std::runtime_error with what is wrong and where.
    [[nodiscard]] static Till from_table(TomlTable table);
    [[nodiscard]] static Till from_file(const std::string& path);

private:
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> values(const Order& order) const;
};

// "12.34".
[[nodiscard]] std::string amount_words(uint64_t cents);

}  // namespace quorvel::sim::exam

#endif
