// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_PIN_PAD_H
#define QUORVEL_SIMULATOR_PIN_PAD_H

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "simulator/cardholder.h"
#include "simulator/device.h"
#include "simulator/engine.h"
#include "simulator/finding.h"
#include "simulator/journal.h"
#include "simulator/line.h"
#include "simulator/screen.h"
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
        // The key of every encrypted session, in place of one that is drawn.
        std::optional<SessionKey> sessionKey = {};
        // How long a second of a command's time-out lasts.
        std::chrono::milliseconds second{1000};
        // How long a command waits that says nothing about it, in such seconds.
        std::chrono::seconds patience{120};
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

    // What the cardholder does, now or when a command waits for it; see Gestures and Cardholder.
    void act(const Gestures& gestures);
    void when(std::string command, const Gestures& gestures) { cardholder_.when(std::move(command), gestures); }

    void press(Key key) { act(Gestures().press(key)); }
    void type_pin(std::string_view digits) { act(Gestures().type(digits)); }
    void swipe(Card card) { act(Gestures().swipe(std::move(card))); }
    void insert(Card card) { act(Gestures().insert(std::move(card))); }
    void remove() { act(Gestures().remove()); }
    void tap(Card card) { act(Gestures().tap(std::move(card))); }

    [[nodiscard]] Screen::Content screen() const { return screen_.content(); }

    // What the commands have made of it. Only while nobody plays the PIN pad.
    [[nodiscard]] const Device& device() const noexcept { return engine_.device(); }

    // From any thread, at any time. What led to an answer is there before the answer is sent.
    [[nodiscard]] std::vector<Finding> findings() const { return journal_.findings(); }
    [[nodiscard]] std::vector<Traffic> traffic() const { return journal_.traffic(); }

private:
    [[nodiscard]] std::optional<std::chrono::milliseconds> patience() const;
    void send(ByteView bytes);

    Journal journal_;
    Line line_;
    Screen screen_;
    Cardholder cardholder_;
    Engine engine_;
    const std::chrono::milliseconds frameTimeout_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace quorvel::sim

#endif
