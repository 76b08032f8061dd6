// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_pad.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

namespace quorvel::sim {

static_assert(std::atomic<bool>::is_always_lock_free, "request_stop() is called in signal handlers");

PinPad::PinPad(Options options)
    : journal_(std::move(options.listeners)),
      engine_({.device = std::move(options.device),
               .sessionKey = options.sessionKey,
               .second = options.second,
               .patience = options.patience},
              journal_, screen_, cardholder_, [this](ByteView bytes) { send(bytes); }),
      frameTimeout_(options.frameTimeout) {}

PinPad::~PinPad() { stop(); }

void PinPad::run() {
    while (!stopping_) {
        switch (line_.wait(patience())) {
            case Line::Event::readable:
                // What was done before the host spoke is not for the command that comes.
                engine_.poll(Engine::Clock::now());
                engine_.receive(line_.read());
                break;
            case Line::Event::timedOut:
                if (engine_.in_frame()) engine_.give_up();
                break;
            case Line::Event::woken:
                break;
        }
        engine_.poll(Engine::Clock::now());
    }
}

// A frame that has begun comes first: a command that waits notices a little later that its time is over.
std::optional<std::chrono::milliseconds> PinPad::patience() const {
    if (engine_.in_frame()) return frameTimeout_;
    const auto deadline = engine_.deadline();
    if (!deadline) return std::nullopt;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Engine::Clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
}

void PinPad::act(const Gestures& gestures) {
    cardholder_.act(gestures);
    line_.wake();
}

void PinPad::request_stop() noexcept {
    stopping_ = true;
    line_.wake();
}

void PinPad::start() {
    thread_ = std::thread([this] {
        try {
            run();
        } catch (const std::exception& error) { journal_.record(Finding{Finding::Kind::internal, error.what()}); }
    });
}

void PinPad::stop() {
    request_stop();
    if (thread_.joinable()) thread_.join();
}

void PinPad::send(ByteView bytes) {
    if (line_.write(bytes) || stopping_) return;
    journal_.record(Finding{Finding::Kind::sequence, "nobody reads the line: bytes were lost"});
}

}  // namespace quorvel::sim
