// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_pad.h"

#include <exception>
#include <optional>
#include <utility>

namespace quorvel::sim {

static_assert(std::atomic<bool>::is_always_lock_free, "request_stop() is called in signal handlers");

PinPad::PinPad(Options options)
    : journal_(std::move(options.listeners)),
      engine_(std::move(options.device), journal_, [this](ByteView bytes) { send(bytes); }),
      frameTimeout_(options.frameTimeout) {}

PinPad::~PinPad() { stop(); }

void PinPad::run() {
    while (!stopping_) {
        const auto limit = engine_.in_frame() ? std::optional(frameTimeout_) : std::nullopt;
        switch (line_.wait(limit)) {
            case Line::Event::readable:
                engine_.receive(line_.read());
                break;
            case Line::Event::timedOut:
                engine_.give_up();
                break;
            case Line::Event::woken:
                break;
        }
    }
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
