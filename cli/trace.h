// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_TRACE_H
#define QUORVEL_CLI_TRACE_H

#include <string>
#include <thread>

#include "cli/output.h"
#include "wire/descriptor.h"

namespace quorvel::cli {

// Stands between the library and the port: a pseudo-terminal whose bytes go on to the port and back, on a thread of its
// own, and are told in words as they pass.
class Tap {
public:
    // Throws std::system_error.
    Tap(const std::string& port, Output& output);
    ~Tap();
    Tap(const Tap&) = delete;
    Tap& operator=(const Tap&) = delete;

    // What the library is to open.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    void relay(Output& output) const;

    wire::Descriptor port_;
    wire::Descriptor master_;
    std::string path_;
    // Held open, so that the line does not hang up before the library has opened it.
    wire::Descriptor slave_;
    wire::WakeUp stop_;
    std::thread thread_;
};

}  // namespace quorvel::cli

#endif
