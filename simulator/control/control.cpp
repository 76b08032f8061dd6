// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/control.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "simulator/control/arguments.h"
#include "simulator/control/verbs.h"

namespace quorvel::sim {

using nlohmann::json;

namespace {

json done() { return {{"ok", true}}; }

Control::Outcome run(const Verb& verb, Control& control, Arguments& arguments) {
    if (const auto* gesture = std::get_if<Verb::Gesture>(&verb.run)) {
        Gestures gestures;
        (*gesture)(gestures, arguments, control.cards());
        arguments.end();
        control.pin_pad().act(gestures);
        return done();
    }
    if (const auto* plan = std::get_if<Verb::Plan>(&verb.run)) {
        (*plan)(arguments)(control.pin_pad());
        return done();
    }
    if (const auto* wait = std::get_if<Verb::Wait>(&verb.run)) { return (*wait)(control, arguments); }
    json answer = done();
    answer.update(std::get<Verb::Action>(verb.run)(control, arguments));
    return answer;
}

}  // namespace

json refusal(std::string_view error) { return {{"ok", false}, {"error", error}}; }

Control::Control(PinPad& pinPad, Cards cards) : pinPad_(pinPad), firstCards_(std::move(cards)), cards_(firstCards_) {}

Cards Control::cards() const {
    const std::lock_guard lock(mutex_);
    return cards_;
}

void Control::add_cards(const Cards& more) {
    const std::lock_guard lock(mutex_);
    cards_.add(more);
}

void Control::restore_cards() {
    const std::lock_guard lock(mutex_);
    cards_ = firstCards_;
}

Control::Outcome Control::perform(const json& request) {
    try {
        Arguments arguments(request);
        return run(find_verb(arguments.text("do")), *this, arguments);
    } catch (const RequestError& error) { return refusal(error.what()); }
}

Control::Outcome Control::perform_line(std::string_view line) {
    const json request = json::parse(line, nullptr, false);
    return request.is_discarded() ? refusal("no JSON") : perform(request);
}

std::optional<json> Control::answer(const Await& await) const {
    const State state = pinPad_.board().state();
    const bool waits = !state.waiting.empty() && (await.command.empty() || state.waiting == await.command);
    if (waits || pinPad_.board().waits(await.command) > await.before) { return done(); }
    if (std::chrono::steady_clock::now() < await.deadline) { return std::nullopt; }
    return refusal(fmt::format("{} did not wait in time", await.command.empty() ? "a command" : await.command));
}

std::vector<std::string_view> Control::verbs() {
    std::vector<std::string_view> names;
    for (const Verb& verb : all_verbs()) { names.push_back(verb.name); }
    return names;
}

}  // namespace quorvel::sim
