// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_FACE_H
#define QUORVEL_SIMULATOR_FACE_FACE_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/face/feed.h"
#include "simulator/face/key_map.h"
#include "simulator/face/picture.h"
#include "simulator/pin_pad.h"

namespace quorvel::sim {

// A person's way to play the cardholder, without the terminal: deeds go in, views come out.
class Face {
public:
    // All of them must outlive it. The feed listens to the PIN pad.
    Face(PinPad& pinPad, const Cards& cards, const Feed& feed);

    void perform(const Deed& deed);
    // With as much of the trace as fits in so many rows.
    [[nodiscard]] View view(size_t rows) const;

    void greet(const std::string& words) { remark_ = words; }
    // The person has left.
    [[nodiscard]] bool is_over() const noexcept { return over_; }

private:
    struct Slot;
    static const Slot kStripeReader;
    static const Slot kChipReader;
    static const Slot kAntenna;

    void move(Move move);
    void take(size_t index);
    void insert_or_take_out();
    void use(const Slot& slot);
    void reset();
    void scroll(int64_t entries);
    [[nodiscard]] std::string inserted() const;

    PinPad& pinPad_;
    const Feed& feed_;
    std::vector<std::pair<std::string, Card>> cards_;
    Size textSize_;
    size_t taken_ = 0;
    // Behind the last entry that is shown; none while the newest is.
    std::optional<uint64_t> end_;
    std::string remark_;
    bool over_ = false;
};

// Plays the PIN pad and shows its face in the terminal until the person leaves, a signal to end comes or the PIN pad is
// told to stop. The greeting is there until the person does something. Calls `ready` once the terminal is there. Throws
// std::runtime_error when there is none that can show it, and what PinPad::run() throws.
void show_face(PinPad& pinPad, const Cards& cards, const Feed& feed, const std::function<void()>& ready,
               const std::string& greeting = "");

}  // namespace quorvel::sim

#endif
