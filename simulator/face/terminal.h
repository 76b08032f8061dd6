// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_TERMINAL_H
#define QUORVEL_SIMULATOR_FACE_TERMINAL_H

#include <array>
#include <cstdio>
#include <memory>
#include <optional>

#include "simulator/face/canvas.h"

// Of ncurses, whose header has macros for half of the words there are.
struct screen;

namespace quorvel::sim {

// The terminal from which the program was started, whatever its standard input and output are. As long as this lives,
// the terminal shows pictures and tells each key; then it is again as it was.
class Terminal {
public:
    // Throws std::runtime_error when there is none, or none that could show a picture.
    Terminal();

    [[nodiscard]] Size size() const;
    // The window has another size now.
    void resize();
    void draw(const Canvas& canvas);

    // To poll for keys.
    [[nodiscard]] int input() const noexcept { return ::fileno(file_.get()); }
    // The next one that has been pressed: a character, or the code that ncurses has for it.
    [[nodiscard]] std::optional<int> key();

private:
    void choose_looks();

    struct Look {
        unsigned attributes = 0;
        short pair = 0;
    };
    struct Close {
        void operator()(FILE* file) const { std::fclose(file); }
    };
    struct Restore {
        void operator()(::screen* screen) const;
    };

    std::unique_ptr<FILE, Close> file_;
    std::unique_ptr<::screen, Restore> screen_;
    std::array<Look, kStyleCount> looks_{};
};

}  // namespace quorvel::sim

#endif
