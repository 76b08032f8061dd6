// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/verbs.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "simulator/control/key_verbs.h"
#include "simulator/control/state_verbs.h"
#include "simulator/control/utf8.h"

namespace quorvel::sim {

using nlohmann::json;

namespace {

constexpr int64_t kLongestMs = int64_t{24} * 60 * 60 * 1000;
constexpr int64_t kDefaultAwaitMs = 10000;
constexpr int64_t kMostTraffic = 1000;
constexpr int64_t kDefaultTraffic = 20;
constexpr size_t kLongestText = 32;
constexpr size_t kLongestPlan = 100;

struct NamedKey {
    std::string_view name;
    Key key;
};

constexpr std::array kKeys{
    NamedKey{"enter", Key::kEnter}, NamedKey{"clear", Key::kClear}, NamedKey{"cancel", Key::kCancel},
    NamedKey{"up", Key::kUp},       NamedKey{"down", Key::kDown},   NamedKey{"f1", Key::kF1},
    NamedKey{"f2", Key::kF2},       NamedKey{"f3", Key::kF3},       NamedKey{"f4", Key::kF4},
};

Key key_of(const std::string& name) {
    if (name.size() == 1 && is_digit(digit(name.front()))) { return digit(name.front()); }
    const auto* found = std::ranges::find(kKeys, name, &NamedKey::name);
    if (found == kKeys.end()) { throw RequestError(fmt::format("there is no key \"{}\"", name)); }
    return found->key;
}

const Card& card_of(Arguments& arguments, const Cards& cards) {
    try {
        return cards.at(arguments.text("card"));
    } catch (const std::out_of_range& error) { throw RequestError(error.what()); }
}

void press(Gestures& gestures, Arguments& arguments, const Cards&) { gestures.press(key_of(arguments.text("key"))); }

void type(Gestures& gestures, Arguments& arguments, const Cards&) {
    const std::string digits = arguments.text("digits");
    const auto fits = [](char character) { return is_digit(digit(character)); };
    if (digits.size() > kLongestText || !std::ranges::all_of(digits, fits)) {
        throw RequestError(fmt::format("\"digits\" is not up to {} digits", kLongestText));
    }
    gestures.type(digits);
}

void choose(Gestures& gestures, Arguments& arguments, const Cards&) {
    gestures.choose(static_cast<int>(arguments.number("option", 1, 99)));
}

void swipe(Gestures& gestures, Arguments& arguments, const Cards& cards) { gestures.swipe(card_of(arguments, cards)); }
void insert(Gestures& gestures, Arguments& arguments, const Cards& cards) {
    gestures.insert(card_of(arguments, cards));
}
void tap(Gestures& gestures, Arguments& arguments, const Cards& cards) { gestures.tap(card_of(arguments, cards)); }
void remove(Gestures& gestures, Arguments&, const Cards&) { gestures.remove(); }

void notify(Gestures& gestures, Arguments& arguments, const Cards&) {
    const std::string text = arguments.text("text");
    const auto fits = [](char character) { return character >= ' ' && character <= '~'; };
    if (text.empty() || text.size() > kLongestText || !std::ranges::all_of(text, fits)) {
        throw RequestError(fmt::format("\"text\" is not 1 to {} characters of ASCII", kLongestText));
    }
    gestures.notify(text);
}

std::string command_of(Arguments& arguments) {
    std::string command = arguments.text("command");
    if (find_command(command) == nullptr) { throw RequestError(fmt::format("there is no command \"{}\"", command)); }
    return command;
}

json when(Control& control, Arguments& arguments) {
    const std::string command = command_of(arguments);
    const json& acts = arguments.list("acts");
    const bool keep = arguments.flag("keep");
    arguments.end();
    if (acts.size() > kLongestPlan) { throw RequestError(fmt::format("more than {} acts", kLongestPlan)); }
    const Cards cards = control.cards();
    Gestures gestures;
    for (const json& act : acts) {
        Arguments members(act);
        const std::string name = members.text("do");
        const auto* gesture = std::get_if<Verb::Gesture>(&find_verb(name).run);
        if (gesture == nullptr) { throw RequestError(fmt::format("\"{}\" is nothing that a cardholder does", name)); }
        (*gesture)(gestures, members, cards);
        members.end();
    }
    keep ? control.pin_pad().when(command, gestures) : control.pin_pad().when_in_session(command, gestures);
    return json::object();
}

std::chrono::milliseconds milliseconds_of(Arguments& arguments, std::optional<int64_t> otherwise = {}) {
    return std::chrono::milliseconds(arguments.number("ms", 0, kLongestMs, otherwise));
}

Verb::Deed inject(Arguments& arguments) {
    const Fault fault = fault_of(arguments);
    try {
        check(fault);
    } catch (const std::invalid_argument& error) { throw RequestError(error.what()); }
    return [fault](PinPad& pinPad) { pinPad.inject(fault); };
}

// What takes nothing but its name.
template <void (PinPad::*kDone)()>
Verb::Deed deed(Arguments& arguments) {
    arguments.end();
    return [](PinPad& pinPad) { (pinPad.*kDone)(); };
}

template <typename Each>
json to_list(const std::vector<Each>& all) {
    json list = json::array();
    for (const Each& each : all) { list.push_back(to_json(each)); }
    return list;
}

json faults(Control& control, Arguments& arguments) {
    arguments.end();
    return {{"faults", to_list(control.pin_pad().faults())}};
}

Verb::Deed hang_up(Arguments& arguments) {
    const auto time = milliseconds_of(arguments);
    arguments.end();
    return [time](PinPad& pinPad) { pinPad.hang_up(time); };
}

Control::Await await(Control& control, Arguments& arguments) {
    const std::string command = arguments.has("command") ? command_of(arguments) : "";
    const auto limit = milliseconds_of(arguments, kDefaultAwaitMs);
    arguments.end();
    return {.command = command,
            .before = control.pin_pad().board().waits(command),
            .deadline = std::chrono::steady_clock::now() + limit};
}

json state(Control& control, Arguments& arguments) {
    arguments.end();
    const State state = control.pin_pad().board().state();
    const std::string_view session = state.encrypted ? "encrypted" : state.session ? "plain" : "none";
    return {{"port", control.pin_pad().path()},
            {"waiting", state.waiting.empty() ? json() : json(state.waiting)},
            {"session", session},
            {"card", state.cardInserted},
            {"plans", control.pin_pad().plans().size()}};
}

json screen(Control& control, Arguments& arguments) {
    arguments.end();
    const Screen::Content content = control.pin_pad().screen();
    json menu = json::array();
    for (const std::string& option : content.menu) { menu.push_back(utf8(option)); }
    return {{"text", utf8(content.text)},
            {"menu", menu},
            {"selected", content.selected},
            {"typed", utf8(content.typed)},
            {"media", utf8(content.media)}};
}

json findings(Control& control, Arguments& arguments) {
    arguments.end();
    return {{"findings", to_list(control.pin_pad().findings())}};
}

json traffic(Control& control, Arguments& arguments) {
    const auto last = static_cast<size_t>(arguments.number("last", 1, kMostTraffic, kDefaultTraffic));
    arguments.end();
    const std::vector<Traffic> all = control.pin_pad().traffic();
    json list = json::array();
    for (size_t i = all.size() - std::min(all.size(), last); i < all.size(); ++i) { list.push_back(to_json(all[i])); }
    return {{"traffic", list}};
}

json cards(Control& control, Arguments& arguments) {
    arguments.end();
    return {{"cards", control.cards().names()}};
}

constexpr std::array kVerbs{
    Verb{"press", press, "key"},
    Verb{"type", type, "digits"},
    Verb{"choose", choose, "option"},
    Verb{"swipe", swipe, "card"},
    Verb{"insert", insert, "card"},
    Verb{"remove", remove},
    Verb{"tap", tap, "card"},
    Verb{"notify", notify, "text"},
    Verb{"when", when},
    Verb{"plans", verbs::plans},
    Verb{"clear-plans", verbs::clear_plans},
    Verb{"await", await},
    Verb{"state", state},
    Verb{"screen", screen},
    Verb{"cards", cards},
    Verb{"keys", keys},
    Verb{"decipher-pin", decipher_pin},
    Verb{"new-card", verbs::new_card},
    Verb{"edit-card", verbs::edit_card},
    Verb{"session", verbs::session},
    Verb{"tables", verbs::tables},
    Verb{"reset", verbs::reset},
    Verb{"findings", findings},
    Verb{"clear-findings", deed<&PinPad::clear_findings>},
    Verb{"traffic", traffic},
    Verb{"fault", inject, "fault"},
    Verb{"faults", faults},
    Verb{"clear-faults", deed<&PinPad::clear_faults>},
    Verb{"hang-up", hang_up, "ms"},
    Verb{"stop", deed<&PinPad::request_stop>},
};

}  // namespace

std::string name_of(Key key) {
    if (is_digit(key)) { return {static_cast<char>(key)}; }
    return std::string(std::ranges::find(kKeys, key, &NamedKey::key)->name);
}

// Faults that come again and again have no end unless it is told.
Fault fault_of(Arguments& arguments) {
    Fault fault{.kind = arguments.text("fault"),
                .command = arguments.has("command") ? arguments.text("command") : "",
                .time = milliseconds_of(arguments, 0),
                .status = static_cast<int>(arguments.number("status", 0, 999, 0)),
                .before = arguments.flag("before"),
                .asError = arguments.flag("as-error"),
                .every = static_cast<unsigned>(arguments.number("every", 1, UINT32_MAX, 1)),
                .chance = arguments.fraction("chance").value_or(1)};
    const bool again = arguments.has("every") || arguments.has("chance");
    const auto times = static_cast<unsigned>(arguments.number("times", 1, UINT32_MAX, 1));
    fault.times = again && !arguments.has("times") ? std::nullopt : std::optional(times);
    arguments.end();
    return fault;
}

json to_json(const Fault& fault) {
    json object{{"fault", fault.kind}};
    if (!fault.command.empty()) { object["command"] = fault.command; }
    if (fault.time != std::chrono::milliseconds::zero()) { object["ms"] = fault.time.count(); }
    if (find_fault_kind(fault.kind)->detail == FaultKind::Detail::kStatus) { object["status"] = fault.status; }
    if (fault.before) { object["before"] = true; }
    if (fault.asError) { object["as-error"] = true; }
    if (fault.every != 1) { object["every"] = fault.every; }
    if (fault.chance < 1) { object["chance"] = fault.chance; }
    if (fault.times) { object["times"] = *fault.times; }
    return object;
}

json to_json(const Traffic& traffic) {
    return {{"time", time_text(traffic.time)},
            {"from", traffic.sender == Sender::kHost ? "host" : "pin-pad"},
            {"bytes", wire_text(traffic)},
            {"words", utf8(traffic.words)}};
}

json to_json(const Finding& finding) {
    json object{{"number", finding.number},
                {"time", time_text(finding.time)},
                {"kind", kind_name(finding.kind)},
                {"text", utf8(finding.text)}};
    if (std::string field = field_in(finding); !field.empty()) { object["field"] = std::move(field); }
    return object;
}

std::span<const Verb> all_verbs() noexcept { return kVerbs; }

const Verb& find_verb(std::string_view name) {
    const auto* found = std::ranges::find(kVerbs, name, &Verb::name);
    if (found == kVerbs.end()) { throw RequestError(fmt::format("there is no \"{}\"", name)); }
    return *found;
}

}  // namespace quorvel::sim
