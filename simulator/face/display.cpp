// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/display.h"

#include <algorithm>
#include <fmt/format.h>

namespace quorvel::sim {

namespace {

constexpr char kLineEnd = '\r';

// Text that is too wide goes on in the next line: some commands send two full lines without an end between them.
std::vector<DisplayLine> text_lines(std::string_view text, size_t columns) {
    std::vector<DisplayLine> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find(kLineEnd), text.size());
        for (std::u32string& line : wrapped(from_latin1(text.substr(0, end)), columns, 0, Break::kAnywhere)) {
            lines.push_back({std::move(line)});
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// With their numbers, as the digit chooses too; the chosen one among them, however many there are.
std::vector<DisplayLine> menu_lines(const Screen::Content& content, Size room) {
    const size_t count = std::min(room.rows, content.menu.size());
    const size_t first = std::min(content.selected > count ? content.selected - count : 0, content.menu.size() - count);
    std::vector<DisplayLine> lines;
    for (size_t i = first; i < first + count; ++i) {
        const bool chosen = i + 1 == content.selected;
        const std::string option = fmt::format("{}{}{}", i + 1, chosen ? '>' : ' ', content.menu[i]);
        lines.push_back({from_latin1(option).substr(0, room.columns), chosen});
    }
    return lines;
}

}  // namespace

std::vector<DisplayLine> display_lines(const Screen::Content& content, Size size) {
    const auto centred = [&](std::u32string text) {
        text.resize(std::min(text.size(), size.columns));
        return DisplayLine{std::u32string((size.columns - text.size()) / 2, U' ') + text};
    };
    std::vector<DisplayLine> lines = text_lines(content.text, size.columns);
    if (!content.menu.empty()) {
        lines.resize(std::min(lines.size(), size.rows / 2));
        std::ranges::move(menu_lines(content, {size.rows - lines.size(), size.columns}), std::back_inserter(lines));
    }
    if (!content.media.empty()) { lines.assign(1, centred(U'[' + from_latin1(content.media) + U']')); }
    lines.resize(std::min(lines.size(), content.typed.empty() ? size.rows : size.rows - 1));
    if (!content.typed.empty()) {
        // The end is what is being typed.
        const std::u32string typed = from_latin1(content.typed);
        lines.push_back(centred(typed.substr(typed.size() - std::min(typed.size(), size.columns))));
    }
    lines.resize(size.rows);
    return lines;
}

Size text_size(std::string_view digits) {
    const auto number = [&](size_t at) {
        return static_cast<size_t>(digits.at(at) - '0') * 10 + static_cast<size_t>(digits.at(at + 1) - '0');
    };
    return {std::max<size_t>(number(0), 1), std::max<size_t>(number(2), 1)};
}

}  // namespace quorvel::sim
