// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <variant>

#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

// Those whose code is also a status.
constexpr std::array statusKeys{Key::enter, Key::f1, Key::f2, Key::f3, Key::f4, Key::clear, Key::cancel};

}  // namespace

Outcome gky(Call& call) {
    call.request.end();
    return Wait{[](const Event& event) -> std::optional<Answer> {
        const auto* pressed = std::get_if<KeyPressed>(&event);
        if (pressed == nullptr || std::ranges::find(statusKeys, pressed->key) == statusKeys.end()) return std::nullopt;
        return Answer{.status = static_cast<Status>(pressed->key)};
    }};
}

}  // namespace quorvel::sim::commands
