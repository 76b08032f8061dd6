// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_CANVAS_H
#define QUORVEL_SIMULATOR_FACE_CANVAS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::sim {

// What a cell is for. How that looks is the terminal's business.
enum class Style {
    kPlain,
    kFrame,
    kHeading,
    kBar,
    kRemark,
    kDisplay,
    kDisplayChosen,
    kChosen,
    kHost,
    kPinPad,
    kFinding
};
inline constexpr size_t kStyleCount = static_cast<size_t>(Style::kFinding) + 1;

struct Size {
    size_t rows = 0;
    size_t columns = 0;

    bool operator==(const Size&) const = default;
};

struct Area {
    size_t row = 0;
    size_t column = 0;
    Size size = {};

    // What is left of it within a border one cell wide.
    [[nodiscard]] Area inner() const noexcept;
};

// Cells to draw on. What does not fit is left out, so that nobody has to look at the size first.
class Canvas {
public:
    struct Cell {
        char32_t character = U' ';
        Style style = Style::kPlain;
    };

    explicit Canvas(Size size) : size_(size), cells_(size.rows * size.columns) {}

    [[nodiscard]] Size size() const noexcept { return size_; }
    [[nodiscard]] const Cell& at(size_t row, size_t column) const { return cells_.at(row * size_.columns + column); }

    // Not beyond `width` cells, the last of which shows that there would be more.
    void write(size_t row, size_t column, size_t width, std::u32string_view text, Style style);
    void fill(const Area& area, Style style);
    void box(const Area& area, std::u32string_view heading);

private:
    void put(size_t row, size_t column, char32_t character, Style style);

    Size size_;
    std::vector<Cell> cells_;
};

// Control characters, and bytes that are no UTF-8, become a point.
[[nodiscard]] std::u32string from_utf8(std::string_view text);
// What PIN pads have as text, a character a byte.
[[nodiscard]] std::u32string from_latin1(std::string_view text);

enum class Break { kAnywhere, kBehindBlanks };

// Lines of at most `width` characters; those behind the first begin with `indent` blanks. What has no blank where a
// line should end breaks anywhere.
[[nodiscard]] std::vector<std::u32string> wrapped(std::u32string_view text, size_t width, size_t indent, Break where);

}  // namespace quorvel::sim

#endif
