// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_PORT_H
#define QUORVEL_CLI_PORT_H

#include <string>
#include <vector>

namespace quorvel::cli {

struct PortInfo {
    std::string path;
    // Empty when nothing tells.
    std::string device;
    // "ready", or why it cannot be opened.
    std::string state;
};

// The serial ports that can be opened, and the USB ones that cannot.
[[nodiscard]] std::vector<PortInfo> list_ports();

// Opens the port and closes it again. Throws what the library raises.
void probe_port(const std::string& path);

// The other processes that have the port open, as far as they may be seen.
struct Holder {
    int process;
    std::string program;
};

[[nodiscard]] std::vector<Holder> holders_of(const std::string& path);

// "group dialout may read and write it", for one that the user must not open.
struct Access {
    std::string owner;
    std::string group;
    std::string mode;
};

[[nodiscard]] Access access_of(const std::string& path);

}  // namespace quorvel::cli

#endif
