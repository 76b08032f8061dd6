// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_JSON_TEXT_H
#define QUORVEL_SIMULATOR_WEB_JSON_TEXT_H

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace quorvel::sim::web {

// On one line. Invalid UTF-8 does not stop it.
[[nodiscard]] inline std::string text_of(const nlohmann::json& value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// As browsers take it.
[[nodiscard]] inline std::string server_sent_event(std::string_view name, std::string_view data) {
    return fmt::format("event: {}\ndata: {}\n\n", name, data);
}

}  // namespace quorvel::sim::web

#endif
