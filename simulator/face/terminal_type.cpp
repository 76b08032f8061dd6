// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/terminal_type.h"

// A file of its own, since the last of these defines everyday words as macros.
#include <curses.h>
#include <term.h>

namespace quorvel::sim {

bool moves_cursor(int descriptor) {
    int error = 0;
    if (::setupterm(nullptr, descriptor, &error) != OK) { return false; }
    const bool moves = ::tigetstr("cup") != nullptr;
    ::del_curterm(::cur_term);
    return moves;
}

}  // namespace quorvel::sim
