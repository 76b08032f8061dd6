// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>

#include "simulator/commands/command.h"
#include "simulator/files/toml_table.h"
#include "simulator/scenario/scenario.h"
#include "simulator/scenario/step_file.h"
#include "wire/status.h"

namespace quorvel::sim {

namespace {

namespace fs = std::filesystem;

using End = Scenario::End;
constexpr std::array kEnds{
    Named{"close", End::kClose},
    Named{"done", End::kDone},
    Named{"stop", End::kStop},
};

struct IdentityField {
    std::string_view name;
    std::string Identity::*text;
    size_t width;
};

// The widths are those of the fields in which the PIN pad tells them.
constexpr std::array kIdentityFields{
    IdentityField{"manufacturer", &Identity::manufacturer, 20},
    IdentityField{"model", &Identity::model, 19},
    IdentityField{"os_version", &Identity::osVersion, 20},
    IdentityField{"spec_version", &Identity::specVersion, 4},
    IdentityField{"manufacturer_version", &Identity::manufacturerVersion, 16},
    IdentityField{"serial_number", &Identity::serialNumber, 20},
    IdentityField{"part_number", &Identity::partNumber, 32},
};

Identity identity(TomlTable& table) {
    Identity identity;
    for (const auto& [name, text, width] : kIdentityFields) {
        if (!table.has(name)) { continue; }
        identity.*text = table.text(name);
        if ((identity.*text).size() > width) { table.refuse(name, fmt::format("longer than {} characters", width)); }
    }
    if (table.has("contactless")) { identity.contactless = table.flag("contactless"); }
    return identity;
}

KeyStore keys(TomlTable table, const fs::path& folder) {
    if (!table.has("file")) { return KeyStore::from_table(std::move(table)); }
    KeyStore keys;
    const fs::path path = folder / table.required_text("file");
    try {
        keys = KeyStore::from_file(path.string());
    } catch (const std::runtime_error& error) { table.refuse("file", error.what()); }
    table.end();
    return keys;
}

void load_tables(Tables& tables, TomlTable table) {
    static constexpr size_t kVersionWidth = 10;
    static constexpr size_t kIndexWidth = 2;
    const auto acquirer = static_cast<int>(table.number("acquirer", 0, 99, Tables::kAllAcquirers));
    const std::string version = table.required_text("version");
    if (version.size() > kVersionWidth) {
        table.refuse("version", fmt::format("longer than {} characters", kVersionWidth));
    }
    Tables::Records records;
    for (TomlTable& record : table.tables("records")) {
        Tables::Key key;
        key.table = static_cast<int>(record.number("table", 0, 9, 1));
        key.acquirer = static_cast<int>(record.number("acquirer", 0, 99, std::nullopt));
        key.index = record.required_text("index");
        if (key.index.size() != kIndexWidth) { record.refuse("index", "not of two characters"); }
        const std::string body = record.text("body");
        record.end();
        records[std::move(key)] = to_bytes(body);
    }
    table.end();
    tables.load(acquirer, version, std::move(records));
}

int status_of(TomlTable& table) {
    static constexpr int kHighest = 999;
    if (!table.node("status")->is_string()) {
        return static_cast<int>(table.number("status", 0, kHighest, std::nullopt));
    }
    const std::string name = table.text("status");
    for (int status = 0; status <= kHighest; ++status) {
        if (!name.empty() && status_name(status) == name) { return status; }
    }
    table.refuse("status", fmt::format("there is no status \"{}\"", name));
}

Expectation::Status expected_status(TomlTable& table) {
    if (!table.has("status")) { return std::nullopt; }
    const toml::node& status = *table.node("status");
    if (status.value_exact<std::string>() == "none") { return std::optional<int>(); }
    return status_of(table);
}

std::vector<ExpectedValue> expected_values(TomlTable& table, std::string_view key, const CommandIds& commands) {
    std::vector<ExpectedValue> values;
    for (const std::string& words : table.texts(key)) {
        table.blame(key, [&] { values.push_back(ExpectedValue::parse(words, commands)); });
    }
    return values;
}

Expectation expectation(TomlTable table) {
    static constexpr int64_t kMost = 1000000;
    Expectation expected{.line = table.line(), .commands = command_ids(table, "command")};
    expected.with = expected_values(table, "with", expected.commands);
    expected.without = expected_values(table, "without", expected.commands);
    expected.status = expected_status(table);
    expected.anywhere = table.flag("anywhere");
    if (table.has("times")) {
        expected.times = static_cast<unsigned>(table.number("times", expected.anywhere ? 0 : 1, kMost, std::nullopt));
    } else if (expected.anywhere) {
        expected.times.reset();
    }
    table.end();
    return expected;
}

void read_time(Scenario& scenario, TomlTable table) {
    scenario.second = std::chrono::milliseconds(table.number("second", 1, 60000, 1000));
    scenario.patience = std::chrono::seconds(table.number("patience", 1, 86400, 120));
    table.end();
}

void read_device(Scenario& scenario, TomlTable& table, const fs::path& folder) {
    scenario.device = Device::standard();
    if (auto device = table.table("device")) {
        scenario.device.language = device->choice("language", kLanguages);
        scenario.device.identity = identity(*device);
        scenario.amounts = device->flag("amounts");
        device->end();
    }
    if (auto inner = table.table("keys")) { scenario.device.keys = keys(std::move(*inner), folder); }
    for (TomlTable& each : table.tables("tables")) { load_tables(scenario.device.tables, std::move(each)); }
    if (auto time = table.table("time")) { read_time(scenario, std::move(*time)); }
}

void read_play(Scenario& scenario, TomlTable& table) {
    scenario.cards = Cards::standard();
    if (auto cards = table.table("cards")) { scenario.cards.add(Cards::from_table(std::move(*cards))); }
    for (TomlTable& each : table.tables("script")) { scenario.script.push_back(read_step(each, scenario.cards)); }
    for (TomlTable& each : table.tables("expect")) { scenario.expectations.push_back(expectation(std::move(each))); }
    for (TomlTable& each : table.tables("finding")) {
        scenario.findings.push_back({each.line(), each.required_text("text")});
        each.end();
    }
}

Scenario read(std::string_view text, const fs::path& folder) {
    const toml::table document = parse_toml(text);
    TomlTable table(document);
    Scenario scenario;
    scenario.title = table.required_text("title");
    scenario.description = table.text("description");
    scenario.end = table.choice("ends", kEnds);
    read_device(scenario, table, folder);
    read_play(scenario, table);
    table.end();
    return scenario;
}

Scenario read_of(const std::string& file, std::string_view text, const fs::path& folder) {
    Scenario scenario = blaming_file(file, [&] { return read(text, folder); });
    scenario.file = file;
    return scenario;
}

}  // namespace

Scenario Scenario::from_toml(const std::string& file, std::string_view text) { return read_of(file, text, {}); }

Scenario Scenario::from_file(const std::string& path) {
    return read_of(path, text_of_file(path), fs::path(path).parent_path());
}

}  // namespace quorvel::sim
