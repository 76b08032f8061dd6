// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/picture.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <string_view>

#include "simulator/face/display.h"
#include "simulator/face/key_map.h"

namespace quorvel::sim {

namespace {

constexpr size_t kLeftColumns = 32;
// Of the trace beside that.
constexpr size_t kLeastRight = 28;
// With their borders: of the trace, and of all below the PIN pad, where the trace stands above a finding.
constexpr size_t kLeastTrace = 5;
constexpr size_t kLeastBottom = kLeastTrace + 3;
constexpr size_t kStateRows = 4, kShownFindings = 3;
constexpr size_t kCaptionColumns = 6, kKeyColumns = 23, kSlotColumns = 5, kTraceIndent = 2;
// Fields are filled up with blanks; more of them than this tell nothing.
constexpr size_t kMostBlanks = 3;

void bar(Canvas& canvas, const View& view) {
    const size_t columns = canvas.size().columns;
    canvas.fill({0, 0, {1, columns}}, Style::kBar);
    canvas.write(0, 1, columns - 1, from_utf8(fmt::format("quorvel-sim  {}", view.port)), Style::kBar);
    if (view.remark.empty()) { return; }
    const std::u32string remark = U' ' + from_utf8(view.remark) + U' ';
    canvas.write(0, columns - std::min(columns, remark.size()), columns, remark, Style::kRemark);
}

void display(Canvas& canvas, const View& view, size_t row, size_t column) {
    canvas.fill({row, column, view.textSize}, Style::kDisplay);
    for (const DisplayLine& line : display_lines(view.screen, view.textSize)) {
        const Style style = line.chosen ? Style::kDisplayChosen : Style::kDisplay;
        if (line.chosen) { canvas.fill({row, column, {1, view.textSize.columns}}, style); }
        canvas.write(row++, column, view.textSize.columns, line.text, style);
    }
}

void pin_pad(Canvas& canvas, const View& view, const Area& area) {
    canvas.box(area, U"PIN pad");
    const Area inner = area.inner();
    display(canvas, view, inner.row, inner.column + (inner.size.columns - view.textSize.columns) / 2);
    const size_t row = inner.row + view.textSize.rows + 1;
    const std::string waiting = view.waiting.empty() ? "idle" : view.waiting;
    canvas.write(row, inner.column + 1, inner.size.columns - 2, from_utf8(waiting),
                 view.waiting.empty() ? Style::kPlain : Style::kChosen);
    canvas.write(row + 1, inner.column + 1, inner.size.columns - 2, from_utf8(view.session), Style::kPlain);
    canvas.write(row + 2, inner.column + 1, inner.size.columns - 2, from_utf8(view.tables), Style::kPlain);
}

std::vector<Binding> captions() {
    std::vector<Binding> captions;
    std::ranges::copy_if(key_map(), std::back_inserter(captions),
                         [](const Binding& binding) { return !binding.caption.empty(); });
    return captions;
}

size_t key_rows(size_t columns) {
    const size_t across = std::max<size_t>(columns / kKeyColumns, 1);
    return (captions().size() + across - 1) / across;
}

void keys(Canvas& canvas, const Area& area) {
    canvas.box(area, U"Keys");
    const Area inner = area.inner();
    const size_t rows = key_rows(inner.size.columns);
    size_t at = 0;
    for (const Binding& binding : captions()) {
        const size_t row = inner.row + at % rows;
        const size_t column = inner.column + 1 + at / rows * kKeyColumns;
        canvas.write(row, column, kCaptionColumns, from_utf8(binding.caption), Style::kHeading);
        canvas.write(row, column + kCaptionColumns, kKeyColumns - kCaptionColumns, from_utf8(binding.meaning),
                     Style::kPlain);
        ++at;
    }
}

// The keys that do something with the card.
std::string slots(const View::Card& card) {
    return fmt::format("{} {} {}", card.stripe ? 's' : '-', card.chip ? 'i' : '-', card.antenna ? 't' : '-');
}

void card_line(Canvas& canvas, const View& view, size_t index, const Area& line) {
    const View::Card& card = view.cards[index];
    const bool taken = index == view.taken;
    const Style style = taken ? Style::kChosen : Style::kPlain;
    canvas.fill(line, style);
    canvas.write(line.row, line.column, 1, taken ? U">" : U" ", style);
    canvas.write(line.row, line.column + 2, line.size.columns - kSlotColumns - 3, from_utf8(card.name), style);
    canvas.write(line.row, line.column + line.size.columns - kSlotColumns, kSlotColumns, from_utf8(slots(card)), style);
}

void cards(Canvas& canvas, const View& view, const Area& area) {
    canvas.box(area, U"Cards");
    const Area inner = area.inner();
    if (inner.size.rows == 0) { return; }
    canvas.write(inner.row, inner.column + 1, inner.size.columns - 1,
                 from_utf8(fmt::format("reader: {}", view.inserted.empty() ? "empty" : view.inserted)),
                 view.inserted.empty() ? Style::kPlain : Style::kHeading);
    const size_t count = std::min(inner.size.rows - 1, view.cards.size());
    // The card in the hand stays in the middle as long as there are cards on both sides of it.
    const size_t first = std::min(view.taken - std::min(view.taken, count / 2), view.cards.size() - count);
    for (size_t i = 0; i < count; ++i) {
        card_line(canvas, view, first + i, {inner.row + 1 + i, inner.column, {1, inner.size.columns}});
    }
}

struct Mark {
    std::u32string_view text;
    Style style;
};

Mark mark(Feed::Entry::Kind kind) {
    switch (kind) {
        case Feed::Entry::Kind::kHost:
            return {U"> ", Style::kHost};
        case Feed::Entry::Kind::kPinPad:
            return {U"< ", Style::kPinPad};
        case Feed::Entry::Kind::kFinding:
            break;
    }
    return {U"! ", Style::kFinding};
}

std::u32string squeezed(const std::u32string& text) {
    std::u32string result;
    for (size_t at = 0; at < text.size();) {
        const size_t blanks = std::min(text.find_first_not_of(U' ', at), text.size()) - at;
        const size_t count = std::max<size_t>(blanks, 1);
        result += blanks > kMostBlanks ? U" … " : text.substr(at, count);
        at += count;
    }
    return result;
}

std::u32string_view trace_heading(const View& view, size_t columns) {
    constexpr std::u32string_view kScrolled = U"Trace, End goes to the newest";
    // Corners, and blanks between them and the heading.
    constexpr size_t kAround = 6;
    return view.scrolled && kScrolled.size() + kAround <= columns ? kScrolled : U"Trace";
}

// From the newest entry at the bottom upwards, as far as there is room.
void trace_lines(Canvas& canvas, const View& view, const Area& inner) {
    if (view.trace.empty()) {
        canvas.write(inner.row, inner.column, inner.size.columns, U"nothing yet", Style::kPlain);
    }
    size_t left = inner.size.rows;
    for (auto entry = view.trace.rbegin(); entry != view.trace.rend() && left > 0; ++entry) {
        const Mark sign = mark(entry->kind);
        const auto lines = wrapped(std::u32string(sign.text) + squeezed(from_utf8(entry->text)), inner.size.columns,
                                   kTraceIndent, Break::kBehindBlanks);
        for (auto line = lines.rbegin(); line != lines.rend() && left > 0; ++line) {
            canvas.write(inner.row + --left, inner.column, inner.size.columns, *line, sign.style);
        }
    }
}

size_t finding_rows(const View& view) {
    const size_t count = std::min(view.findings.size(), kShownFindings);
    return count == 0 ? 0 : count + 2;
}

void trace(Canvas& canvas, const View& view, const Area& area) {
    canvas.box(area, trace_heading(view, area.size.columns));
    trace_lines(canvas, view, area.inner());
}

void findings(Canvas& canvas, const View& view, const Area& area) {
    canvas.box(area, from_utf8(fmt::format("Findings: {}", view.findingCount)));
    const Area inner = area.inner();
    const size_t count = std::min(view.findings.size(), inner.size.rows);
    for (size_t i = 0; i < count; ++i) {
        const std::string& text = view.findings[view.findings.size() - count + i];
        canvas.write(inner.row + i, inner.column + 1, inner.size.columns - 2, from_utf8(text), Style::kFinding);
    }
}

struct Layout {
    size_t left;
    size_t right;
    // Rows of the PIN pad, beside which there may be the keys, and of what is below.
    size_t top;
    size_t bottom;
    bool keys;
};

// None where the display and what belongs to it would leave no room for the rest.
std::optional<Layout> layout(const View& view, Size size) {
    const size_t left = std::max(kLeftColumns, view.textSize.columns + 4);
    if (size.columns < left + kLeastRight) { return std::nullopt; }
    const size_t right = size.columns - left;
    const size_t own = view.textSize.rows + kStateRows;
    const size_t withKeys = std::max(own, key_rows(right - 2));
    const auto fits = [&](size_t inner) { return size.rows >= 1 + inner + 2 + kLeastBottom; };
    if (!fits(own)) { return std::nullopt; }
    const size_t top = (fits(withKeys) ? withKeys : own) + 2;
    return Layout{left, right, top, size.rows - 1 - top, fits(withKeys)};
}

// Without room for the keys the trace has their place too.
void paint_roomy(Canvas& canvas, const View& view, const Layout& layout) {
    const size_t rows = canvas.size().rows;
    const size_t above = layout.keys ? 1 + layout.top : 1;
    const size_t room = rows - above;
    const size_t found = std::min(finding_rows(view), room - kLeastTrace);
    pin_pad(canvas, view, {1, 0, {layout.top, layout.left}});
    if (layout.keys) { keys(canvas, {1, layout.left, {layout.top, layout.right}}); }
    cards(canvas, view, {1 + layout.top, 0, {layout.bottom, layout.left}});
    trace(canvas, view, {above, layout.left, {room - found, layout.right}});
    if (found > 0) { findings(canvas, view, {rows - found, layout.left, {found, layout.right}}); }
}

// What stands below the display where there is no room beside it, most wanted first.
std::vector<std::string> narrow_lines(const View& view) {
    const std::string card =
        view.cards.empty() ? "no card" : view.cards[view.taken].name + "  " + slots(view.cards[view.taken]);
    return {view.waiting.empty() ? "idle" : view.waiting, "card: " + card,
            fmt::format("reader: {}", view.inserted.empty() ? "empty" : view.inserted),
            fmt::format("findings: {}", view.findingCount), view.session};
}

// Beside or below each other there is no room for more than what a payment needs. The trace has a border only where
// that leaves it some lines.
void paint_narrow(Canvas& canvas, const View& view) {
    const auto [rows, columns] = canvas.size();
    display(canvas, view, 1, 0);
    size_t row = 1 + view.textSize.rows;
    for (const std::string& text : narrow_lines(view)) {
        canvas.write(row++, 0, columns, from_utf8(text), Style::kPlain);
    }
    if (row >= rows) { return; }
    const Area left{row, 0, {rows - row, columns}};
    left.size.rows >= kLeastTrace ? trace(canvas, view, left) : trace_lines(canvas, view, left);
}

}  // namespace

Canvas paint(const View& view, Size size) {
    Canvas canvas(size);
    if (size.rows == 0 || size.columns == 0) { return canvas; }
    bar(canvas, view);
    const auto roomy = layout(view, size);
    roomy ? paint_roomy(canvas, view, *roomy) : paint_narrow(canvas, view);
    return canvas;
}

}  // namespace quorvel::sim
