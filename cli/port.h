// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_PORT_H
#define QUORVEL_CLI_PORT_H

#include <string>
#include <vector>

#include "cli/error.h"

namespace quorvel::cli {

struct PortInfo {
    std::string path;
    // Empty when nothing tells.
    std::string device;
    // "ready", or why it cannot be opened.
    std::string state;
};

// The serial ports that can be opened, those that another program holds, and the USB ones that cannot be opened.
[[nodiscard]] std::vector<PortInfo> list_ports();

// The other processes that have the port open, as far as they may be seen. Not those that play the device at the other
// end of a pseudo-terminal, as the virtual PIN pad does.
struct Holder {
    int process;
    std::string program;
};

[[nodiscard]] std::vector<Holder> holders_of(const std::string& path);
// "till (process 123)".
[[nodiscard]] std::string words_for(const std::vector<Holder>& holders);

// Why a port cannot be used.
class PortError : public Error {
public:
    enum class Reason { kMissing, kHeld, kForbidden, kNoTerminal };

    PortError(Reason reason, const std::string& text, const std::string& remedy)
        : Error(Exit::kPort, text, remedy), reason_(reason) {}

    [[nodiscard]] Reason reason() const noexcept { return reason_; }

private:
    Reason reason_;
};

// Throws PortError for a port that is not there or that somebody holds; it is not opened for that, which could disturb
// who does.
void require_free(const std::string& path);
// Throws PortError in place of what the library says of a port that cannot be opened, and nothing for any other error.
void explain_opening(const std::string& path, const quorvel::Error& error);

// Whether the line goes on saying something that nobody asked for. Listens for a second.
[[nodiscard]] bool babbles(const std::string& path);

}  // namespace quorvel::cli

#endif
