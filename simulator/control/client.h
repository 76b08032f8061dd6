// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_CLIENT_H
#define QUORVEL_SIMULATOR_CONTROL_CLIENT_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "simulator/control/control.h"
#include "wire/descriptor.h"

namespace quorvel::sim {

// One who has connected to the control socket. Lines are answered one after the other; one whose answer has to wait
// holds up those behind it.
class Client {
public:
    // Whoever reads nothing for as long as `patience`, with answers left to read, has gone.
    Client(int socket, Control& control, std::chrono::milliseconds patience)
        : socket_(socket, "accept4"), control_(control), patience_(patience) {}

    [[nodiscard]] int socket() const noexcept { return socket_.get(); }
    // What to poll the socket for: requests only while there is room for them and their answers.
    [[nodiscard]] short events() const noexcept;
    // When to call work() at the latest.
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> deadline() const;

    // Reads what has come.
    void read();
    // Answers what can be answered and writes what can be written.
    void work();

    // Nothing more can come of it.
    [[nodiscard]] bool is_over() const noexcept;
    // It has gone: nobody reads the answers.
    void forsake() noexcept { gone_ = true; }

private:
    [[nodiscard]] bool wants_more() const noexcept;
    // One answer, or a line that needs none. False when there is nothing to do.
    bool step();
    [[nodiscard]] std::optional<std::string> next_line();
    void answer(const Control::Outcome& outcome);
    void write();

    Descriptor socket_;
    Control& control_;
    const std::chrono::milliseconds patience_;
    std::string in_;
    std::string out_;
    std::optional<Control::Await> await_;
    // When it is given up, unless it reads.
    std::optional<std::chrono::steady_clock::time_point> lost_;
    // The rest of a line that was too long is passed over.
    bool skipping_ = false;
    bool ended_ = false;
    bool gone_ = false;
};

}  // namespace quorvel::sim

#endif
