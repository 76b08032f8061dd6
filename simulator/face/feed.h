// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_FEED_H
#define QUORVEL_SIMULATOR_FACE_FEED_H

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/pin_pad.h"
#include "wire/descriptor.h"

namespace quorvel::sim {

// What the PIN pad tells of itself while it plays, for whoever shows it from another thread.
class Feed {
public:
    struct Entry {
        enum class Kind { kHost, kPinPad, kFinding };

        Kind kind = Kind::kHost;
        std::string text;

        bool operator==(const Entry&) const = default;
    };

    // Becomes a listener besides those that are there. It must outlive the PIN pad that is made from the options.
    void listen(PinPad::Options& options);

    void add(Entry entry);

    // How many entries there have been; they are counted from 0 on.
    [[nodiscard]] uint64_t end() const;
    // Those before `end`, the newest last, at most so many; the oldest ones are forgotten in time.
    [[nodiscard]] std::vector<Entry> before(uint64_t end, size_t most) const;
    // The newest findings, the newest last.
    [[nodiscard]] std::vector<std::string> findings(size_t most) const;
    [[nodiscard]] size_t finding_count() const;

    // Woken whenever there is something new to show.
    [[nodiscard]] const WakeUp& wake_up() const noexcept { return wakeUp_; }

private:
    WakeUp wakeUp_;
    mutable std::mutex mutex_;
    std::deque<Entry> entries_;
    std::deque<std::string> findings_;
    uint64_t end_ = 0;
    size_t findingCount_ = 0;
};

}  // namespace quorvel::sim

#endif
