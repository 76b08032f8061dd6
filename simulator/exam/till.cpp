// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/till.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>

#include "simulator/files/toml_table.h"

namespace quorvel::sim::exam {

namespace {

// Whoever writes longer lines has said what matters before; the library's matcher needs the stack for each character.
constexpr size_t kLongestLine = 1000;

constexpr std::array kHosts{
    Named{"approves", Host::kApproves},
    Named{"declines", Host::kDeclines},
    Named{"unreachable", Host::kUnreachable},
    Named{"late", Host::kLate},
};

constexpr auto kFeatures = [] {
    using enum Feature;
    return std::array{Named{"chip", kChip},
                      Named{"stripe", kStripe},
                      Named{"contactless", kContactless},
                      Named{"pin", kPin},
                      Named{"tables", kTables},
                      Named{"interrupt", kInterrupt},
                      Named{"encrypted", kEncrypted}};
}();

bool has_line(const std::string& text, const std::regex& pattern) {
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, std::min(end - begin, kLongestLine));
        if (std::regex_search(line, pattern)) { return true; }
        begin = end + 1;
    }
    return false;
}

void read_exits(Rule& rule, TomlTable& table) {
    static constexpr int64_t kHighest = 255;
    const toml::node* const node = table.node("exit");
    if (node == nullptr) { return; }
    const toml::array* const list = node->as_array();
    if (list == nullptr) { table.refuse("exit", "no list of numbers"); }
    for (const toml::node& each : *list) {
        const auto exit = each.value_exact<int64_t>();
        if (!exit || *exit < 0 || *exit > kHighest) { table.refuse("exit", "not of numbers from 0 to 255"); }
        rule.exits.insert(static_cast<int>(*exit));
    }
}

Rule rule(TomlTable table) {
    Rule rule;
    read_exits(rule, table);
    if (table.has("output")) {
        try {
            rule.output.emplace(table.text("output"));
        } catch (const std::regex_error&) { table.refuse("output", "no regular expression"); }
    }
    if (rule.exits.empty() && !rule.output) { table.refuse("exit", "is missing, and so is output"); }
    table.end();
    return rule;
}

void read_rules(Till& till, TomlTable table) {
    till.paid = till.notPaid = till.unknown = till.reversal = {};
    const std::array<std::pair<std::string_view, Rule*>, 4> rules{
        {{"paid", &till.paid}, {"not-paid", &till.notPaid}, {"unknown", &till.unknown}, {"reversal", &till.reversal}}};
    for (const auto& [name, read] : rules) {
        if (auto inner = table.table(name)) { *read = rule(std::move(*inner)); }
    }
    for (const std::string_view needed : {"paid", "not-paid"}) {
        if (!table.has(needed)) { table.refuse(needed, "is missing"); }
    }
    table.end();
}

void read_takes(Till& till, TomlTable& table) {
    till.takes.clear();
    for (const std::string& name : table.texts("takes")) {
        const auto feature = value_among(kFeatures, name);
        if (!feature) { table.refuse("takes", fmt::format("there is no \"{}\"", name)); }
        till.takes.insert(*feature);
    }
}

void read_hosts(Till& till, TomlTable table) {
    till.hosts.clear();
    for (const auto& [name, host] : kHosts) {
        if (table.has(name)) { till.hosts[host] = table.text(name); }
    }
    table.end();
    if (!till.hosts.contains(Host::kApproves)) { table.refuse("approves", "is missing"); }
}

void read_session(Till& till, TomlTable table) {
    till.plain = table.text("plain");
    till.encrypted = table.text("encrypted");
    table.end();
}

std::string replaced(std::string text, const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [name, value] : values) {
        for (size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size()) {
            text.replace(at, name.size(), value);
        }
    }
    return text;
}

}  // namespace

std::string_view name_of(Host host) noexcept { return name_among(kHosts, host); }
std::string_view name_of(Feature feature) noexcept { return name_among(kFeatures, feature); }

std::string amount_words(uint64_t cents) { return fmt::format("{}.{:02}", cents / 100, cents % 100); }

bool Rule::is_met(const Ended& ended) const {
    if (exits.empty() && !output) { return false; }
    return (exits.empty() || exits.contains(ended.exit)) && (!output || has_line(ended.output, *output));
}

Till::Till() : reversal{{}, std::regex("^REVERSE")} {
    for (const auto& [name, host] : kHosts) { hosts[host] = name; }
}

std::vector<std::pair<std::string, std::string>> Till::values(const Order& order) const {
    const auto host = hosts.find(order.host);
    return {{"{port}", order.port},
            {"{amount}", amount_words(order.cents)},
            {"{cents}", fmt::format("{}", order.cents)},
            {"{host}", host != hosts.end() ? host->second : ""},
            {"{session}", order.encrypted ? encrypted : plain},
            {"{folder}", folder}};
}

std::vector<std::string> Till::command_for(const Order& order) const {
    const auto all = values(order);
    std::vector<std::string> words;
    for (const std::string& each : command) {
        std::string word = replaced(each, all);
        if (!word.empty() || each.empty()) { words.push_back(std::move(word)); }
    }
    return words;
}

std::vector<std::string> Till::environment_for(const Order& order) const {
    const auto host = hosts.find(order.host);
    return {"QUORVEL_EXAM_PORT=" + order.port,
            "QUORVEL_EXAM_AMOUNT=" + amount_words(order.cents),
            fmt::format("QUORVEL_EXAM_CENTS={}", order.cents),
            "QUORVEL_EXAM_HOST=" + (host != hosts.end() ? host->second : ""),
            fmt::format("QUORVEL_EXAM_SESSION={}", order.encrypted ? "encrypted" : "plain"),
            "QUORVEL_EXAM_CASE=" + order.number};
}

std::optional<Outcome> Till::outcome_of(const Ended& ended) const {
    const bool isPaid = paid.is_met(ended);
    const bool isNot = notPaid.is_met(ended);
    const bool isUnknown = unknown.is_met(ended);
    const bool isReversed = reversal.is_met(ended);
    if (isPaid + isNot + isUnknown != 1 || (isPaid && isReversed)) { return std::nullopt; }
    if (isPaid) { return Outcome::kPaid; }
    if (isUnknown) { return Outcome::kUnknown; }
    return isReversed ? Outcome::kReversal : Outcome::kNotPaid;
}

std::string Till::words_for(const Ended& ended) const {
    const std::array<std::pair<const char*, const Rule*>, 4> rules{
        {{"paid", &paid}, {"not-paid", &notPaid}, {"unknown", &unknown}, {"reversal", &reversal}}};
    std::string said;
    for (const auto& [name, rule] : rules) {
        if (rule->is_met(ended)) { said += (said.empty() ? "" : " and ") + std::string(name); }
    }
    const bool several = said.find(' ') != std::string::npos;
    return fmt::format("{}{}, exit {}", said.empty() ? "nothing that is known" : said, several ? " at once" : "",
                       ended.exit);
}

void Till::check_command() const {
    static const std::regex kLooksLikeOne("\\{[a-z]+\\}");
    const auto known = values({});
    for (const std::string& each : command) {
        const bool isKnown =
            std::ranges::find(known, each, [](const auto& value) { return value.first; }) != known.end();
        if (!isKnown && std::regex_match(each, kLooksLikeOne)) {
            throw std::runtime_error(fmt::format("there is no placeholder \"{}\"", each));
        }
    }
}

Till Till::from_table(TomlTable table) {
    Till till;
    till.title = table.required_text("title");
    till.command = table.texts("command");
    till.limit = std::chrono::seconds(table.number("limit", 1, 600, till.limit.count()));
    if (table.has("takes")) { read_takes(till, table); }
    if (auto hosts = table.table("host")) { read_hosts(till, std::move(*hosts)); }
    if (auto session = table.table("session")) { read_session(till, std::move(*session)); }
    if (auto outcome = table.table("outcome")) { read_rules(till, std::move(*outcome)); }
    table.end();
    return till;
}

Till Till::from_file(const std::string& path) {
    Till till = from_document_file<Till>(path);
    till.folder = std::filesystem::path(path).parent_path().string();
    if (till.folder.empty()) { till.folder = "."; }
    return till;
}

}  // namespace quorvel::sim::exam
