// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <variant>

#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

// Those whose code is also a status.
constexpr std::array kStatusKeys{Key::kEnter, Key::kF1, Key::kF2, Key::kF3, Key::kF4, Key::kClear, Key::kCancel};

}  // namespace

Outcome gky(Call& call) {
    call.request.end();
    return Wait{[](const Event& event) -> std::optional<Answer> {
        const auto* pressed = std::get_if<KeyPressed>(&event);
        if (pressed == nullptr || std::ranges::find(kStatusKeys, pressed->key) == kStatusKeys.end()) {
            return std::nullopt;
        }
        return Answer{.status = static_cast<Status>(pressed->key)};
    }};
}

}  // namespace quorvel::sim::commands
