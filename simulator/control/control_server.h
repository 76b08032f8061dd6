// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_CONTROL_SERVER_H
#define QUORVEL_SIMULATOR_CONTROL_CONTROL_SERVER_H

#include <atomic>
#include <chrono>
#include <filesystem>
#include <list>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <utility>

#include "simulator/control/client.h"
#include "simulator/control/control.h"
#include "wire/descriptor.h"

namespace quorvel::sim {

// A Unix domain socket on which up to 32 clients at a time control the PIN pad, each request and each answer a line of
// JSON. Only the user who runs the PIN pad may connect. It serves on a thread of its own as long as it lives; then it
// removes the socket.
class ControlServer {
public:
    // Replaces a socket that a run left behind. Throws std::runtime_error when something else is at `path`, or a socket
    // on which somebody listens. A client that has answers to read and reads nothing for `patience` is dropped.
    ControlServer(const std::filesystem::path& path, Control& control,
                  std::chrono::milliseconds patience = std::chrono::seconds(10));
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

private:
    void serve();
    void take_client();
    [[nodiscard]] int limit() const;

    std::filesystem::path path_;
    Control& control_;
    const std::chrono::milliseconds patience_;
    Descriptor listener_;
    std::pair<dev_t, ino_t> file_;
    WakeUp wakeUp_;
    std::list<Client> clients_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace quorvel::sim

#endif
