// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_DISPLAY_H
#define QUORVEL_SIMULATOR_FACE_DISPLAY_H

#include <string>
#include <string_view>
#include <vector>

#include "simulator/device/screen.h"
#include "simulator/face/canvas.h"

namespace quorvel::sim {

struct DisplayLine {
    std::u32string text = {};
    // The option of a menu that enter chooses.
    bool chosen = false;

    bool operator==(const DisplayLine&) const = default;
};

// The content as it stands on a display of that size: as many lines as the display has.
[[nodiscard]] std::vector<DisplayLine> display_lines(const Screen::Content& content, Size size);

// From digits as PIN pads tell it: two for the rows, two for the columns.
[[nodiscard]] Size text_size(std::string_view digits);

}  // namespace quorvel::sim

#endif
