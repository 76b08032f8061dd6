// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_PORT_LINK_H
#define QUORVEL_SIMULATOR_LINE_PORT_LINK_H

#include <filesystem>

namespace quorvel::sim {

// A symbolic link with a lasting name to a device whose own name changes from run to run; removed with its owner.
class PortLink {
public:
    // Replaces a link that a run left behind. Throws std::runtime_error when something else is at `link`, or a link to
    // another device that is there.
    PortLink(std::filesystem::path link, std::filesystem::path device);
    ~PortLink();
    PortLink(const PortLink&) = delete;
    PortLink& operator=(const PortLink&) = delete;

private:
    std::filesystem::path link_;
    std::filesystem::path device_;
};

}  // namespace quorvel::sim

#endif
