// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <string_view>
#include <variant>

#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMessageWidth = 32;
constexpr size_t kMaxLongMessage = 160;

Screen::Content message(Call& call, std::string_view field) {
    Reader fields = only_block(call);
    Screen::Content content{.text = fields.s(field, kMessageWidth)};
    fields.end();
    return content;
}

}  // namespace

Answer dsp(Call& call) {
    call.screen.show(message(call, "DSP_MSG"));
    return {};
}

Answer dex(Call& call) {
    Reader fields = only_block(call);
    const size_t length = fields.n("DEX_MSGLEN", 3, {0, kMaxLongMessage});
    Screen::Content content{.text = fields.s("DEX_MSG", length, Cr::kAllowed)};
    fields.end();
    call.screen.show(std::move(content));
    return {};
}

// With no card in the reader there is nothing to wait for.
Outcome rmc(Call& call) {
    Screen::Content content = message(call, "RMC_MSG");
    content.text = text_or(call, content.text, Text::kRemoveCard);
    call.screen.show(std::move(content));
    call.device.owesCard = false;
    if (!call.device.chip) { return Answer{}; }
    return Wait{[](const Event& event) -> std::optional<Answer> {
        if (std::holds_alternative<CardRemoved>(event)) { return Answer{}; }
        return std::nullopt;
    }};
}

}  // namespace quorvel::sim::commands
