// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_UDEV_H
#define QUORVEL_CLI_UDEV_H

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel::cli {

// Where the system tells of its devices, the rules for them and its processes.
struct System {
    std::filesystem::path devices = "/run/udev/data";
    std::vector<std::filesystem::path> rules = {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
                                                "/usr/lib/udev/rules.d", "/lib/udev/rules.d"};
    std::filesystem::path processes = "/proc";
};

// Whether a program that looks for modems may open the port as soon as it is there, and what to do about that. Such a
// program sends to each serial port that it is not kept off.
struct Prober {
    std::string found;
    // Empty where there is nothing to do.
    std::string remedy;
};

[[nodiscard]] Prober prober_at(const System& system, dev_t port, const std::string& name);

}  // namespace quorvel::cli

#endif
