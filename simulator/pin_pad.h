// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_PIN_PAD_H
#define QUORVEL_SIMULATOR_PIN_PAD_H

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "simulator/device.h"
#include "simulator/engine.h"
#include "simulator/finding.h"
#include "simulator/journal.h"
#include "simulator/line.h"
#include "simulator/trace.h"

namespace quorvel::sim {

// A virtual PIN pad on a pseudo-terminal.
//
//     sim::PinPad pinPad;
//     pinPad.start();
//     AbecsComm* link = abecs_comm_open(pinPad.path().c_str());
//     ...
//     pinPad.stop();
//     EXPECT_TRUE(pinPad.findings().empty());
class PinPad {
public:
    struct Options {
        Device device = Device::standard();
        Journal::Listeners listeners = {};
        // How long the host may pause inside a frame.
        std::chrono::milliseconds frameTimeout{1000};
    };

    // Throws std::system_error when no pseudo-terminal can be had.
    PinPad() : PinPad(Options{}) {}
    explicit PinPad(Options options);
    ~PinPad();
    PinPad(const PinPad&) = delete;
    PinPad& operator=(const PinPad&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return line_.path(); }

    // Plays the PIN pad on this thread until request_stop(). Throws std::system_error when the line fails.
    void run();
    // Safe from other threads and in signal handlers.
    void request_stop() noexcept;

    // Plays it on a thread of its own. A failure of the line becomes a finding.
    void start();
    void stop();

    // From any thread, at any time. What led to an answer is there before the answer is sent.
    [[nodiscard]] std::vector<Finding> findings() const { return journal_.findings(); }
    [[nodiscard]] std::vector<Traffic> traffic() const { return journal_.traffic(); }

private:
    void send(ByteView bytes);

    Journal journal_;
    Line line_;
    Engine engine_;
    const std::chrono::milliseconds frameTimeout_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace quorvel::sim

#endif
