// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_SESSION_LOG_H
#define QUORVEL_SIMULATOR_WATCH_SESSION_LOG_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

#include "wire/command.h"

namespace quorvel::sim {

// What a host has done since its first command, until it closes the session.
struct SessionLog {
    static constexpr size_t kKept = 100;

    std::chrono::system_clock::time_point since{};
    // How many commands there were, and the ids of the newest, the newest last.
    uint64_t count = 0;
    std::deque<std::string> commands = {};
    // It has sent something and not closed the line since.
    bool hostThere = false;

    // What is no command's id may be anything, and is not kept.
    void add(const std::string& id) {
        ++count;
        commands.push_back(wire::looks_like_id(id) ? id : "???");
        if (commands.size() > kKept) { commands.pop_front(); }
    }
};

}  // namespace quorvel::sim

#endif
