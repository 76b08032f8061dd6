// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_MEMORY_PAD_H
#define QUORVEL_TESTS_SUPPORT_MEMORY_PAD_H

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/memory/line.h"

namespace memory {

// A PIN pad at the far end of a line, which knows frames and nothing of what is in them: it accepts each one and
// answers with the next of what it was given. All of it is as it goes over the line.
class Pad {
public:
    explicit Pad(Line& line) : line_(line) {
        line.listen([this](uint8_t byte) { hear(byte); });
    }
    Pad(Pad&&) = delete;

    // From here on, forgetting what was.
    void answer(std::vector<std::string> answers) {
        state_ = State::kIdle;
        last_.clear();
        heard_.clear();
        answers_.assign(std::make_move_iterator(answers.begin()), std::make_move_iterator(answers.end()));
    }
    // Of itself, as after a request that came before.
    void speak() {
        if (answers_.empty()) { return; }
        last_ = answers_.front();
        answers_.pop_front();
        line_.send(noise(last_));
    }
    [[nodiscard]] size_t requests() const { return requests_; }
    // The frames since then.
    [[nodiscard]] const std::vector<std::string>& heard() const { return heard_; }

    // Whether it refuses the frame that has come, and what becomes of an answer on the way.
    std::function<bool()> refuses = [] { return false; };
    std::function<std::string(std::string)> noise = [](std::string wire) { return wire; };

private:
    enum class State { kIdle, kFrame, kCrcHigh, kCrcLow };

    // What stops for a second in the middle of a frame was given up.
    void hear(uint8_t byte) {
        if (line_.now() - std::exchange(lastHeard_, line_.now()) > std::chrono::seconds(1)) { state_ = State::kIdle; }
        if (state_ != State::kIdle) { heard_.back() += static_cast<char>(byte); }
        switch (state_) {
            case State::kIdle:
                if (byte == 0x16) {
                    state_ = State::kFrame;
                    heard_.emplace_back(1, static_cast<char>(byte));
                }
                if (byte == 0x15) { line_.send(noise(last_)); }
                if (byte == 0x18) {
                    answer({});
                    line_.send("\x04");
                }
                return;
            case State::kFrame:
                if (byte == 0x17) { state_ = State::kCrcHigh; }
                return;
            case State::kCrcHigh:
                state_ = State::kCrcLow;
                return;
            case State::kCrcLow:
                state_ = State::kIdle;
                if (refuses()) { return line_.send("\x15"); }
                ++requests_;
                line_.send("\x06");
                speak();
        }
    }

    Line& line_;
    Time lastHeard_{0};
    std::vector<std::string> heard_;
    State state_ = State::kIdle;
    std::deque<std::string> answers_;
    std::string last_;
    size_t requests_ = 0;
};

}  // namespace memory

#endif
