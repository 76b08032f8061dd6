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

constexpr size_t kTitleWidth = 128;
constexpr size_t kOptionWidth = 24;
constexpr size_t kMaxOptions = 20;

}  // namespace

Outcome mnu(Call& call) {
    const Params params("MNU", call.request, {}, {spe::kTimeout, spe::kDspMsg}, {{spe::kMnuOpt, 1, kMaxOptions}});
    const auto title = params.find(spe::kDspMsg, [](Reader& r) { return r.s("text", kTitleWidth, Cr::kAllowed); });
    auto options = params.all(spe::kMnuOpt, [](Reader& r) { return r.s("text", kOptionWidth); });
    const auto limit = params.timeout();
    Menu menu(call.screen, title.value_or(""), std::move(options));
    return Wait{[menu](const Event& event) mutable -> std::optional<Answer> {
                    const auto result = menu.on(event);
                    if (!result) { return std::nullopt; }
                    if (result->status != Status::kOk) { return Answer{.status = result->status}; }
                    const Param value{pp::kValue, Writer().n(result->option, 2).bytes()};
                    return Answer::of(std::span(&value, 1));
                },
                limit};
}

}  // namespace quorvel::sim::commands
