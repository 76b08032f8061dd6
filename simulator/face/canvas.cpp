// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/canvas.h"

#include <algorithm>
#include <cstdint>

namespace quorvel::sim {

namespace {

constexpr char32_t kMore = U'…';
constexpr char32_t kReplacement = U'·';

// Whatever a terminal might obey instead of showing it.
bool is_control(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

char32_t shown(char32_t character) { return is_control(character) ? kReplacement : character; }

// How many bytes follow the first of a character; none for a byte that begins none.
size_t continuation(uint8_t first) {
    if (first >= 0xC2 && first <= 0xDF) { return 1; }
    if (first >= 0xE0 && first <= 0xEF) { return 2; }
    return first >= 0xF0 && first <= 0xF4 ? 3 : 0;
}

// Takes the character off the front.
char32_t next(std::string_view& text) {
    const auto first = static_cast<uint8_t>(text.front());
    const size_t count = continuation(first);
    const auto follows = [](char c) { return (static_cast<uint8_t>(c) & 0xC0U) == 0x80U; };
    if (first < 0x80 || count == 0 || text.size() <= count
        || !std::all_of(text.begin() + 1, text.begin() + 1 + static_cast<std::ptrdiff_t>(count), follows)) {
        text.remove_prefix(1);
        return first < 0x80 ? first : kReplacement;
    }
    char32_t character = first & (0x3FU >> count);
    for (size_t i = 1; i <= count; ++i) { character = (character << 6U) | (static_cast<uint8_t>(text[i]) & 0x3FU); }
    text.remove_prefix(count + 1);
    return character;
}

// Rather half a line left empty than a word broken, but not more.
size_t fitting(std::u32string_view text, size_t width, Break where) {
    if (text.size() <= width) { return text.size(); }
    const size_t blank = text.substr(0, width).rfind(U' ');
    const bool atBlank = where == Break::kBehindBlanks && blank != std::u32string_view::npos && blank >= width / 2;
    return atBlank ? blank + 1 : width;
}

}  // namespace

Area Area::inner() const noexcept {
    if (size.rows < 2 || size.columns < 2) { return {row, column, {}}; }
    return {row + 1, column + 1, {size.rows - 2, size.columns - 2}};
}

void Canvas::put(size_t row, size_t column, char32_t character, Style style) {
    if (row < size_.rows && column < size_.columns) { cells_[row * size_.columns + column] = {character, style}; }
}

void Canvas::write(size_t row, size_t column, size_t width, std::u32string_view text, Style style) {
    const size_t count = std::min(text.size(), width);
    for (size_t i = 0; i < count; ++i) { put(row, column + i, text[i], style); }
    if (text.size() > width && width > 0) { put(row, column + width - 1, kMore, style); }
}

void Canvas::fill(const Area& area, Style style) {
    for (size_t row = 0; row < area.size.rows; ++row) {
        for (size_t column = 0; column < area.size.columns; ++column) {
            put(area.row + row, area.column + column, U' ', style);
        }
    }
}

void Canvas::box(const Area& area, std::u32string_view heading) {
    if (area.size.rows < 2 || area.size.columns < 2) { return; }
    const size_t bottom = area.row + area.size.rows - 1;
    const size_t right = area.column + area.size.columns - 1;
    for (size_t column = area.column; column <= right; ++column) {
        put(area.row, column, U'─', Style::kFrame);
        put(bottom, column, U'─', Style::kFrame);
    }
    for (size_t row = area.row; row <= bottom; ++row) {
        put(row, area.column, U'│', Style::kFrame);
        put(row, right, U'│', Style::kFrame);
    }
    put(area.row, area.column, U'┌', Style::kFrame);
    put(area.row, right, U'┐', Style::kFrame);
    put(bottom, area.column, U'└', Style::kFrame);
    put(bottom, right, U'┘', Style::kFrame);
    if (area.size.columns < 5) { return; }
    write(area.row, area.column + 2, area.size.columns - 4, std::u32string(U" ").append(heading) + U' ',
          Style::kHeading);
}

std::u32string from_utf8(std::string_view text) {
    std::u32string characters;
    while (!text.empty()) { characters += shown(next(text)); }
    return characters;
}

std::u32string from_latin1(std::string_view text) {
    std::u32string characters;
    for (const char byte : text) { characters += shown(static_cast<uint8_t>(byte)); }
    return characters;
}

std::vector<std::u32string> wrapped(std::u32string_view text, size_t width, size_t indent, Break where) {
    std::vector<std::u32string> lines;
    if (width <= indent) { return lines; }
    do {
        std::u32string line(lines.empty() ? 0 : indent, U' ');
        const size_t count = fitting(text, width - line.size(), where);
        lines.push_back(line.append(text.substr(0, count)));
        text.remove_prefix(count);
    } while (!text.empty());
    return lines;
}

}  // namespace quorvel::sim
