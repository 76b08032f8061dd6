// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <span>
#include <utility>

#include "simulator/cardholder/menu.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t titleWidth = 128;
constexpr size_t optionWidth = 24;
constexpr size_t maxOptions = 20;

}  // namespace

Outcome mnu(Call& call) {
    const Params params("MNU", call.request, {}, {spe::timeout, spe::dspMsg}, {{spe::mnuOpt, 1, maxOptions}});
    const auto title = params.find(spe::dspMsg, [](Reader& r) { return r.s("text", titleWidth, Cr::kAllowed); });
    auto options = params.all(spe::mnuOpt, [](Reader& r) { return r.s("text", optionWidth); });
    const auto limit = params.timeout();
    Menu menu(call.screen, title.value_or(""), std::move(options));
    return Wait{[menu](const Event& event) mutable -> std::optional<Answer> {
                    const auto result = menu.on(event);
                    if (!result) return std::nullopt;
                    if (result->status != Status::kOk) return Answer{.status = result->status};
                    const Param value{pp::value, Writer().n(result->option, 2).bytes()};
                    return Answer::of(std::span(&value, 1));
                },
                limit};
}

}  // namespace quorvel::sim::commands
