// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_ADDRESS_H
#define QUORVEL_SIMULATOR_WEB_ADDRESS_H

#include <string>
#include <string_view>

namespace quorvel::sim::web {

// Where a page is served.
struct Address {
    static constexpr int kHighestPort = 65535;

    // Without the brackets of an IPv6 address.
    std::string host = "127.0.0.1";
    // 0 for any that is free.
    int port = 0;

    // From "8080", "0.0.0.0:8080", "[::1]:8080" or "localhost:0"; nothing is the default. Throws std::runtime_error.
    [[nodiscard]] static Address from(std::string_view text);

    // As a browser on this machine has it.
    [[nodiscard]] std::string url() const;
};

}  // namespace quorvel::sim::web

#endif
