// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_RECORDING_RECORDER_H
#define QUORVEL_SIMULATOR_RECORDING_RECORDER_H

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "wire/recording.h"

namespace quorvel::sim {

// Writes down what happens to a PIN pad, line by line as it happens; docs/recording.md describes the file.
class Recorder {
public:
    enum class Values { kWithheld, kKept };

    // Makes the file anew, for its owner alone. `cards` gives cards their names; `failed` is told once when no more can
    // be written, and the PIN pad goes on. Throws std::system_error.
    Recorder(const std::string& path, Values values, Cards cards, std::function<void(const std::string&)> failed);

    // It ends before the file would have more bytes, as if no more could be written.
    void end_at(size_t most) noexcept { most_ = most; }

    // Beside whoever listens already. The recorder must outlive the PIN pad that is made of the options.
    void listen(PinPad::Options& options);

private:
    using Clock = std::chrono::steady_clock;
    using Mark = Recorded::Mark;
    struct Close {
        void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
    };

    void heard(const Traffic& traffic);
    void acted(const Event& event, const std::string& waiting);
    [[nodiscard]] std::string name_of_card(const Card& card) const;
    void write(Recorded recorded);
    void write(std::string_view line);

    const std::string path_;
    const Values values_;
    const Cards cards_;
    const std::function<void(const std::string&)> failed_;
    const Clock::time_point begin_ = Clock::now();
    std::unique_ptr<std::FILE, Close> file_;
    size_t most_ = SIZE_MAX;
    size_t size_ = 0;
};

}  // namespace quorvel::sim

#endif
