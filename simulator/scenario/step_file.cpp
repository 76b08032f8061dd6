// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/scenario/step_file.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/commands/command.h"
#include "simulator/control/arguments.h"
#include "simulator/control/verbs.h"
#include "simulator/pin_pad.h"

namespace quorvel::sim {

using nlohmann::json;

namespace {

constexpr std::string_view kPlanned = "when";
constexpr std::string_view kActs = "acts";
constexpr int64_t kLongestPause = int64_t{24} * 60 * 60 * 1000;

json to_json(const toml::node& node) {
    if (const auto* text = node.as_string()) { return text->get(); }
    if (const auto* number = node.as_integer()) { return number->get(); }
    if (const auto* fraction = node.as_floating_point()) { return fraction->get(); }
    if (const auto* flag = node.as_boolean()) { return flag->get(); }
    json whole;
    if (const auto* list = node.as_array()) {
        for (const toml::node& each : *list) { whole.push_back(to_json(each)); }
    }
    if (const auto* table = node.as_table()) {
        for (const auto& [key, each] : *table) { whole[std::string(key.str())] = to_json(each); }
    }
    return whole;
}

// Digits that are typed or pressed may be a PIN's.
json open_value(const std::string& key, json value) {
    const bool isText = value.is_string();
    const bool isDigit = isText && value.get_ref<const std::string&>().size() == 1
                         && is_digit(digit(value.get_ref<const std::string&>().front()));
    if ((key == "type" && isText) || (key == "press" && isDigit)) { return "..."; }
    for (auto& [inner, each] : value.items()) {
        if (value.is_structured()) { each = open_value(value.is_object() ? inner : key, each); }
    }
    return value;
}

// As the file has it.
std::string words_of(TomlTable& table, json (*shown)(const std::string& key, json value)) {
    std::string words;
    for (const std::string& key : table.keys()) {
        words += fmt::format("{}{} = {}", words.empty() ? "" : ", ", key, shown(key, to_json(*table.node(key))).dump());
    }
    return words;
}

// A verb that does something, whether or not anybody listens to an answer. Null for any other name.
const Verb* deed_named(std::string_view name) {
    for (const Verb& verb : all_verbs()) {
        const bool does =
            std::holds_alternative<Verb::Gesture>(verb.run) || std::holds_alternative<Verb::Plan>(verb.run);
        if (verb.name == name && does) { return &verb; }
    }
    return nullptr;
}

const Verb& verb_of(TomlTable& table) {
    const Verb* found = nullptr;
    for (const std::string& key : table.keys()) {
        const Verb* const verb = deed_named(key);
        if (verb != nullptr && found != nullptr) { table.refuse(key, fmt::format("a step after {}", found->name)); }
        if (verb != nullptr) { found = verb; }
    }
    if (found != nullptr) { return *found; }
    const std::vector<std::string> keys = table.keys();
    if (keys.empty()) { throw std::runtime_error(fmt::format("line {}: a step without anything to do", table.line())); }
    table.refuse(keys.front(), "there is no such step");
}

// The request that the control socket would take for it.
json request_for(const Verb& verb, TomlTable& table) {
    json request{{"do", verb.name}};
    for (const std::string& key : table.keys()) {
        if (key != verb.name && key != kPlanned) { request[key] = to_json(*table.node(key)); }
    }
    if (!verb.member.empty()) {
        request[std::string(verb.member)] = to_json(*table.node(verb.name));
    } else if (!table.flag(verb.name)) {
        table.refuse(verb.name, "neither left out nor true");
    }
    return request;
}

// What the table's verb says, of whose members the first stands behind `do`.
template <typename Take>
auto with_arguments(const Verb& verb, TomlTable& table, Take take) {
    const json request = request_for(verb, table);
    try {
        Arguments arguments(request);
        static_cast<void>(arguments.text("do"));
        return take(arguments);
    } catch (const RequestError& error) { table.refuse(verb.name, error.what()); }
}

void add_act(Gestures& gestures, TomlTable& act, const Cards& cards, std::string_view blamed) {
    const Verb& verb = verb_of(act);
    const auto* add = std::get_if<Verb::Gesture>(&verb.run);
    if (add == nullptr) { act.refuse(blamed, fmt::format("{} is nothing that a cardholder does", verb.name)); }
    with_arguments(verb, act, [&](Arguments& arguments) {
        (*add)(gestures, arguments, cards);
        arguments.end();
    });
}

Gestures several_acts(TomlTable& table, const Cards& cards) {
    Gestures gestures;
    for (const std::string& key : table.keys()) {
        if (key != kPlanned && key != kActs) { table.refuse(key, "not in one step with acts"); }
    }
    for (TomlTable& act : table.tables(kActs)) {
        if (act.has(kPlanned)) { act.refuse(kPlanned, "has no place in acts"); }
        add_act(gestures, act, cards, verb_of(act).name);
    }
    return gestures;
}

// For the next of these commands that waits.
Step::Deed plan(TomlTable& table, const Cards& cards) {
    const CommandIds when = command_ids(table, kPlanned);
    Gestures gestures;
    if (table.has(kActs)) {
        gestures = several_acts(table, cards);
    } else {
        add_act(gestures, table, cards, kPlanned);
    }
    return [gestures, when](PinPad& pinPad) {
        for (const std::string& command : when) { pinPad.when(command, gestures); }
    };
}

Step::Deed deed(TomlTable& table, const Cards& cards) {
    if (table.has(kPlanned)) { return plan(table, cards); }
    const Verb& verb = verb_of(table);
    if (const auto* deed = std::get_if<Verb::Plan>(&verb.run)) { return with_arguments(verb, table, *deed); }
    Gestures gestures;
    add_act(gestures, table, cards, verb.name);
    return [gestures](PinPad& pinPad) { pinPad.act(gestures); };
}

void require_alone(TomlTable& table, std::string_view name) {
    if (!table.has(name)) { return; }
    for (const std::string& key : table.keys()) {
        if (key != name) { table.refuse(key, fmt::format("not in one step with {}", name)); }
    }
}

}  // namespace

CommandIds command_ids(TomlTable& table, std::string_view key) {
    if (!table.has(key)) { table.refuse(key, "is missing"); }
    CommandIds ids = table.texts(key);
    if (ids.empty()) { table.refuse(key, "is empty"); }
    for (const std::string& id : ids) {
        if (find_command(id) == nullptr) { table.refuse(key, fmt::format("there is no command \"{}\"", id)); }
    }
    return ids;
}

Step read_step(TomlTable& table, const Cards& cards) {
    require_alone(table, "wait");
    require_alone(table, "pause");
    const auto whole = [](const std::string& /*key*/, json value) { return value; };
    Step step{.line = table.line(),
              .words = words_of(table, whole),
              .openWords = words_of(table, open_value),
              .what = Step::Pause{}};
    if (table.has("wait")) {
        step.what = Step::Wait{command_ids(table, "wait")};
    } else if (table.has("pause")) {
        step.what = Step::Pause{std::chrono::milliseconds(table.number("pause", 0, kLongestPause, std::nullopt))};
    } else {
        step.what = deed(table, cards);
    }
    return step;
}

}  // namespace quorvel::sim
