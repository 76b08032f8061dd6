// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string>
#include <utility>
#include <variant>

#include "simulator/commands/handlers.h"
#include "simulator/digit_entry.h"
#include "simulator/menu.h"
#include "simulator/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t menuTitleWidth = 128;
constexpr size_t menuOptionWidth = 24;
constexpr size_t maxMenuOptions = 20;
constexpr uint64_t maxNumberDigits = 32;

// Those whose code is also a status.
constexpr std::array statusKeys{Key::enter, Key::f1, Key::f2, Key::f3, Key::f4, Key::clear, Key::cancel};

std::string prompt(uint64_t index) { return fmt::format("NUMBER {:04X}", index); }

}  // namespace

Outcome gky(Call& call) {
    call.request.end();
    return Wait{[](const Event& event) -> std::optional<Answer> {
        const auto* pressed = std::get_if<KeyPressed>(&event);
        if (pressed == nullptr || std::ranges::find(statusKeys, pressed->key) == statusKeys.end()) return std::nullopt;
        return Answer{.status = static_cast<Status>(pressed->key)};
    }};
}

Outcome mnu(Call& call) {
    const Params params(
        "MNU", call.request,
        {Params::at_most_once(spe::timeout), Params::at_most_once(spe::dspMsg), {spe::mnuOpt, 1, maxMenuOptions}});
    const auto title = params.find(spe::dspMsg, [](Reader& r) { return r.s("text", menuTitleWidth, Cr::allowed); });
    auto options = params.all(spe::mnuOpt, [](Reader& r) { return r.s("text", menuOptionWidth); });
    const auto limit = params.timeout();
    Menu menu(call.screen, title.value_or(""), std::move(options));
    return Wait{[menu](const Event& event) mutable -> std::optional<Answer> {
                    const auto result = menu.on(event);
                    if (!result) return std::nullopt;
                    if (result->status != Status::ok) return Answer{.status = result->status};
                    const Param value{pp::value, Writer().n(result->option, 2).bytes()};
                    return Answer::of(std::span(&value, 1));
                },
                limit};
}

Outcome gcd(Call& call) {
    const Params params("GCD", call.request,
                        {Params::once(spe::msgIdx), Params::once(spe::minDig), Params::once(spe::maxDig),
                         Params::at_most_once(spe::timeout)});
    const uint64_t message = params.get(spe::msgIdx, [](Reader& r) { return r.x("index", 2); });
    const uint64_t fewest = params.get(spe::minDig, [](Reader& r) { return r.x("digits", 1, {0, maxNumberDigits}); });
    const uint64_t most = params.get(spe::maxDig, [&](Reader& r) {
        return r.x("digits", 1, {fewest, maxNumberDigits});
    });
    const auto limit = params.timeout();
    DigitEntry entry(call.screen, prompt(message), fewest, most, DigitEntry::Echo::digits);
    return Wait{[entry](const Event& event) mutable -> std::optional<Answer> {
                    const auto result = entry.on(event);
                    if (!result) return std::nullopt;
                    if (result->status != Status::ok) return Answer{.status = result->status};
                    const Param value{pp::value, to_bytes(result->digits)};
                    return Answer::of(std::span(&value, 1));
                },
                limit};
}

}  // namespace quorvel::sim::commands
