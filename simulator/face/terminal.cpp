// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/terminal.h"

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

#include "simulator/face/terminal_type.h"

#define NCURSES_NOMACROS
#include <curses.h>

namespace quorvel::sim {

namespace {

constexpr int kEscape = 0x1B;
// How long the rest of a function key's sequence may take; a person who wants out does not wait for longer.
constexpr int kEscapeDelayMs = 50;
constexpr short kUsual = -1;

struct Colours {
    Style style;
    short foreground;
    short background;
    // What sets it off on a terminal with colours, and on one without.
    attr_t coloured;
    attr_t plain;
};

constexpr std::array kColours{
    Colours{Style::kPlain, kUsual, kUsual, A_NORMAL, A_NORMAL},
    Colours{Style::kFrame, COLOR_BLUE, kUsual, A_NORMAL, A_NORMAL},
    Colours{Style::kHeading, kUsual, kUsual, A_BOLD, A_BOLD},
    Colours{Style::kBar, COLOR_WHITE, COLOR_BLUE, A_BOLD, A_REVERSE},
    Colours{Style::kRemark, COLOR_BLACK, COLOR_YELLOW, A_NORMAL, A_BOLD},
    Colours{Style::kDisplay, COLOR_BLACK, COLOR_GREEN, A_NORMAL, A_REVERSE},
    Colours{Style::kDisplayChosen, COLOR_GREEN, COLOR_BLACK, A_BOLD, A_BOLD},
    Colours{Style::kChosen, COLOR_CYAN, kUsual, A_BOLD, A_BOLD},
    Colours{Style::kHost, kUsual, kUsual, A_NORMAL, A_NORMAL},
    Colours{Style::kPinPad, COLOR_GREEN, kUsual, A_NORMAL, A_NORMAL},
    Colours{Style::kFinding, COLOR_RED, kUsual, A_BOLD, A_BOLD},
};
static_assert(kColours.size() == kStyleCount);

// For terminals whose character set does not have it.
char substitute(char32_t character) {
    static constexpr std::string_view kLetters = "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYPsaaaaaaaceeeeiiiidnooooo/ouuuuypy";
    static constexpr char32_t kFirstLetter = U'\u00C0';
    if (character >= kFirstLetter && character - kFirstLetter < kLetters.size()) {
        return kLetters[character - kFirstLetter];
    }
    switch (character) {
        case U'─':
            return '-';
        case U'│':
            return '|';
        case U'┌':
        case U'┐':
        case U'└':
        case U'┘':
            return '+';
        case U'…':
            return '~';
        default:
            return '.';
    }
}

wchar_t printable(char32_t character) {
    const auto wide = static_cast<wchar_t>(character);
    std::mbstate_t state{};
    std::array<char, MB_LEN_MAX> bytes{};
    const bool known = std::wcrtomb(bytes.data(), wide, &state) != static_cast<size_t>(-1);
    return known && ::wcwidth(wide) == 1 ? wide : static_cast<wchar_t>(substitute(character));
}

}  // namespace

Terminal::Terminal() {
    const int descriptor = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (descriptor >= 0) { file_.reset(::fdopen(descriptor, "r+")); }
    if (!file_) { throw std::runtime_error("there is no terminal to show a face in"); }
    std::setlocale(LC_CTYPE, "");
    if (moves_cursor(descriptor)) { screen_.reset(::newterm(nullptr, file_.get(), file_.get())); }
    if (!screen_) {
        throw std::runtime_error("the terminal cannot show a face: TERM names none that moves its cursor");
    }
    ::set_escdelay(kEscapeDelayMs);
    ::cbreak();
    ::noecho();
    ::nonl();
    ::curs_set(0);
    ::nodelay(::stdscr, true);
    ::keypad(::stdscr, true);
    choose_looks();
}

void Terminal::Restore::operator()(::screen* screen) const {
    ::endwin();
    ::delscreen(screen);
}

// NO_COLOR is what people set who want none anywhere.
void Terminal::choose_looks() {
    const bool coloured =
        ::has_colors() && std::getenv("NO_COLOR") == nullptr && ::start_color() == OK && ::use_default_colors() == OK;
    for (const Colours& colour : kColours) {
        const auto index = static_cast<size_t>(colour.style);
        const auto pair = static_cast<short>(index + 1);
        if (coloured) { ::init_pair(pair, colour.foreground, colour.background); }
        looks_.at(index) = coloured ? Look{colour.coloured, pair} : Look{colour.plain, 0};
    }
}

Size Terminal::size() const {
    return {static_cast<size_t>(::getmaxy(::stdscr)), static_cast<size_t>(::getmaxx(::stdscr))};
}

void Terminal::resize() {
    winsize window{};
    if (::ioctl(input(), TIOCGWINSZ, &window) != 0 || window.ws_row == 0 || window.ws_col == 0) { return; }
    ::resizeterm(window.ws_row, window.ws_col);
    // Terminals keep of the old picture what they like.
    ::clearok(::stdscr, true);
}

void Terminal::draw(const Canvas& canvas) {
    for (size_t row = 0; row < canvas.size().rows; ++row) {
        for (size_t column = 0; column < canvas.size().columns; ++column) {
            const auto& [character, style] = canvas.at(row, column);
            const Look& look = looks_.at(static_cast<size_t>(style));
            const std::array<wchar_t, 2> text{printable(character), L'\0'};
            cchar_t cell{};
            ::setcchar(&cell, text.data(), look.attributes, look.pair, nullptr);
            ::mvadd_wch(static_cast<int>(row), static_cast<int>(column), &cell);
        }
    }
    ::refresh();
}

// What ncurses knows no key for comes as escape and the rest; to the PIN pad that would be "cancel" and digits.
std::optional<int> Terminal::key() {
    const int code = ::getch();
    if (code == ERR) { return std::nullopt; }
    if (code != kEscape) { return code; }
    bool alone = true;
    while (::getch() != ERR) { alone = false; }
    return alone ? kEscape : static_cast<int>(KEY_CODE_YES);
}

}  // namespace quorvel::sim
