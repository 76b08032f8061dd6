// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_LISTEN_H
#define QUORVEL_SIMULATOR_WATCH_LISTEN_H

#include <functional>
#include <utility>

namespace quorvel::sim {

// Behind whoever listens already.
template <typename... Arguments, typename More>
void listen_too(std::function<void(Arguments...)>& listener, More more) {
    listener = [first = std::move(listener), more](Arguments... arguments) {
        if (first) { first(arguments...); }
        more(arguments...);
    };
}

}  // namespace quorvel::sim

#endif
