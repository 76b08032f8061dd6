// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/address.h"

#include <charconv>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>

namespace quorvel::sim::web {

namespace {

std::optional<int> port_of(std::string_view digits) {
    int port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole && port >= 0 && port <= Address::kHighestPort ? std::optional(port) : std::nullopt;
}

// Without brackets; empty for what is no host.
std::string_view host_of(std::string_view text) {
    if (text.size() > 2 && text.front() == '[' && text.back() == ']') { return text.substr(1, text.size() - 2); }
    return text.find_first_of(":[]") == std::string_view::npos ? text : std::string_view();
}

}  // namespace

Address Address::from(std::string_view text) {
    if (text.empty()) { return {}; }
    const size_t colon = text.rfind(':');
    const auto port = port_of(colon == std::string_view::npos ? text : text.substr(colon + 1));
    const std::string_view host = colon == std::string_view::npos ? "127.0.0.1" : host_of(text.substr(0, colon));
    if (!port || host.empty()) {
        throw std::runtime_error(fmt::format("\"{}\" is no ADDRESS:PORT: 8080, 0.0.0.0:8080 or [::1]:8080", text));
    }
    return {std::string(host), *port};
}

std::string Address::url() const {
    const bool any = host == "0.0.0.0" || host == "::";
    const std::string shown = any ? "127.0.0.1" : host.find(':') != std::string::npos ? "[" + host + "]" : host;
    return fmt::format("http://{}:{}/", shown, port);
}

}  // namespace quorvel::sim::web
