// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_PICTURE_H
#define QUORVEL_SIMULATOR_FACE_PICTURE_H

#include <cstddef>
#include <string>
#include <vector>

#include "simulator/device/screen.h"
#include "simulator/face/canvas.h"
#include "simulator/face/feed.h"

namespace quorvel::sim {

// All that is to be seen.
struct View {
    struct Card {
        std::string name;
        bool stripe = false;
        bool chip = false;
        bool antenna = false;
    };

    std::string port;
    // What became of what the person did last.
    std::string remark = {};
    Screen::Content screen = {};
    Size textSize = {4, 16};
    // "GKY wait for a key"; empty when no command waits.
    std::string waiting = {};
    bool session = false;
    bool encrypted = false;
    // The name of the card in the chip reader; empty when there is none.
    std::string inserted = {};
    std::vector<Card> cards = {};
    // The card in the hand, counted from 0.
    size_t taken = 0;
    // The newest last.
    std::vector<Feed::Entry> trace = {};
    // Newer entries are there but not shown.
    bool scrolled = false;
    std::vector<std::string> findings = {};
    size_t findingCount = 0;
};

// As much of it as there is room for; the display comes first.
[[nodiscard]] Canvas paint(const View& view, Size size);

}  // namespace quorvel::sim

#endif
