// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/state_verbs.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "simulator/control/card_json.h"
#include "simulator/control/utf8.h"
#include "wire/fields.h"
#include "wire/hex.h"
#include "wire/named.h"

namespace quorvel::sim::verbs {

using nlohmann::json;

namespace {

using Reset = PinPad::Reset;

constexpr size_t kLongestName = 40;

constexpr std::array kResets{
    Named{"all", Reset::kAll},     Named{"cards", Reset::kCards},   Named{"tables", Reset::kTables},
    Named{"keys", Reset::kKeys},   Named{"pins", Reset::kPins},     Named{"media", Reset::kMedia},
    Named{"plans", Reset::kPlans}, Named{"faults", Reset::kFaults}, Named{"findings", Reset::kFindings},
};

Reset reset_of(const std::string& what) {
    const auto found = value_among(kResets, what);
    if (!found) { throw RequestError(fmt::format("there is no \"{}\" to reset", what)); }
    return *found;
}

json to_json(const std::vector<Cardholder::Plan>& plans) {
    json list = json::array();
    for (const Cardholder::Plan& plan : plans) {
        list.push_back({{"command", plan.command}, {"acts", plan.gestures.events().size()}, {"keep", plan.kept}});
    }
    return list;
}

std::string name_of(Arguments& arguments) {
    std::string name = arguments.text("card");
    const auto fits = [](char character) { return character > ' ' && character <= '~'; };
    if (name.empty() || name.size() > kLongestName || !std::ranges::all_of(name, fits)) {
        throw RequestError(fmt::format("\"card\" is not 1 to {} characters of ASCII without blanks", kLongestName));
    }
    return name;
}

// Not copied: who nests deeply enough would have the copy run out of stack.
const json& members_of(Arguments& arguments) {
    static const json kNone = json::object();
    return arguments.has("members") ? arguments.object("members") : kNone;
}

// The length of an application's identifier, the identifier, the type and the label stand first; what is not so has
// been loaded all the same.
json head_of(ByteView body) {
    static constexpr size_t kIdentifier = 16;
    try {
        Reader reader("", body);
        const size_t size = reader.n("length", 2, {1, kIdentifier});
        Bytes aid = reader.h("identifier", 2 * kIdentifier);
        aid.resize(size);
        const uint64_t type = reader.n("type", 2);
        const size_t label = std::min(reader.left(), kIdentifier);
        return {{"aid", to_hex(aid)}, {"type", type}, {"label", utf8(reader.s("label", label))}};
    } catch (const LayoutError&) { return json::object(); }
}

json to_json(const Tables::Key& key, ByteView body) {
    constexpr int kApplications = 1;
    json record{{"table", key.table}, {"acquirer", key.acquirer}, {"index", utf8(key.index)}, {"bytes", body.size()}};
    if (key.table == kApplications) { record.update(head_of(body)); }
    return record;
}

}  // namespace

json reset(Control& control, Arguments& arguments) {
    const Reset what = reset_of(arguments.text("what", "all"));
    arguments.end();
    if (!control.pin_pad().reset(what)) {
        throw RequestError(fmt::format("{} waits", control.pin_pad().board().state().waiting));
    }
    if (what == Reset::kAll || what == Reset::kCards) { control.restore_cards(); }
    return json::object();
}

json plans(Control& control, Arguments& arguments) {
    arguments.end();
    return {{"plans", to_json(control.pin_pad().plans())}, {"unused", to_json(control.pin_pad().unused_plans())}};
}

json clear_plans(Control& control, Arguments& arguments) {
    arguments.end();
    control.pin_pad().clear_plans();
    return json::object();
}

json new_card(Control& control, Arguments& arguments) {
    const std::string name = name_of(arguments);
    const std::string like = arguments.text("like", "");
    const json& members = members_of(arguments);
    arguments.end();
    const Cards cards = control.cards();
    if (cards.has(name)) { throw RequestError(fmt::format("there is a card \"{}\" already", name)); }
    control.add_cards(card_from(members, name, cards, like));
    return json::object();
}

json edit_card(Control& control, Arguments& arguments) {
    const std::string name = name_of(arguments);
    const json& members = members_of(arguments);
    arguments.end();
    const Cards edited = card_from(members, name, control.cards(), name);
    control.add_cards(edited);
    control.pin_pad().forget_chip(edited.at(name).pan);
    return json::object();
}

json session(Control& control, Arguments& arguments) {
    arguments.end();
    const auto log = control.pin_pad().session();
    if (!log) {
        return {{"session", "none"}, {"since", nullptr}, {"host", false}, {"count", 0}, {"commands", json::array()}};
    }
    return {{"session", control.pin_pad().board().state().encrypted ? "encrypted" : "plain"},
            {"since", time_text(log->since)},
            {"host", log->hostThere},
            {"count", log->count},
            {"commands", log->commands}};
}

json tables(Control& control, Arguments& arguments) {
    arguments.end();
    const Tables tables = control.pin_pad().tables();
    json versions = json::array();
    for (const auto& [acquirer, version] : tables.versions()) {
        versions.push_back({{"acquirer", acquirer}, {"version", utf8(version)}});
    }
    json records = json::array();
    for (const auto& [key, body] : tables.records()) { records.push_back(to_json(key, body)); }
    return {{"loading", tables.loading()}, {"versions", versions}, {"records", records}};
}

}  // namespace quorvel::sim::verbs
