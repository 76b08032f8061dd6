// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/recording.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <optional>
#include <stdexcept>

#include "wire/hex.h"
#include "wire/toml.h"

namespace quorvel::wire {

namespace {

using Mark = Recorded::Mark;
using std::chrono::microseconds;

constexpr int64_t kMicrosecondsPerSecond = 1000000;
constexpr size_t kMostSeconds = 9;
constexpr size_t kDecimals = 6;
constexpr std::string_view kReplaced = "replaced=";
constexpr std::string_view kWords = "# ";

// What may stand behind a kind.
enum class Rest { kNothing, kBytes, kText };

// Those of one mark behind which the same may stand.
struct Kinds {
    Mark mark;
    Rest rest;
    std::array<std::string_view, 6> names;
};

constexpr std::array kKinds{
    Kinds{Mark::kHost, Rest::kBytes, {"frame", "sealed", "bytes"}},
    Kinds{Mark::kHost, Rest::kNothing, {"can", "nak"}},
    Kinds{Mark::kPinPad, Rest::kBytes, {"frame", "sealed"}},
    Kinds{Mark::kPinPad, Rest::kNothing, {"ack", "nak", "eot"}},
    Kinds{Mark::kDeed, Rest::kText, {"press", "swipe", "insert", "tap", "notify", "fault"}},
    Kinds{Mark::kDeed, Rest::kNothing, {"remove", "left"}},
    Kinds{Mark::kFinding, Rest::kText, {"framing", "layout", "sequence", "unsupported", "internal", "money"}},
};

constexpr std::array<std::string_view, 3> kSettings{"seed", "second", "values"};

Rest rest_of(Mark mark, std::string_view name) {
    for (const Kinds& kinds : kKinds) {
        if (kinds.mark == mark && !name.empty() && std::ranges::count(kinds.names, name) != 0) { return kinds.rest; }
    }
    throw std::runtime_error(fmt::format(R"(there is no kind "{}" behind "{}")", name, static_cast<char>(mark)));
}

// Off the front, with the blank behind it.
std::string_view next_word(std::string_view& text) {
    const size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

int64_t number_in(std::string_view digits) {
    int64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

microseconds time_in(std::string_view text) {
    const auto allDigits = [](std::string_view part) {
        return std::ranges::all_of(part, [](unsigned char c) { return std::isdigit(c) != 0; });
    };
    const size_t point = std::min(text.find('.'), text.size());
    const std::string_view seconds = text.substr(0, point);
    const std::string_view decimals = text.substr(std::min(point + 1, text.size()));
    const bool fits = !seconds.empty() && seconds.size() <= kMostSeconds && decimals.size() == kDecimals;
    if (!fits || !allDigits(seconds) || !allDigits(decimals)) {
        throw std::runtime_error(fmt::format("\"{}\" is no time like 12.345678", text));
    }
    return microseconds(number_in(seconds) * kMicrosecondsPerSecond + number_in(decimals));
}

Mark mark_in(std::string_view text) {
    static constexpr std::string_view kMarks = "><*!";
    if (text.size() != 1 || kMarks.find(text.front()) == std::string_view::npos) {
        throw std::runtime_error(fmt::format("\"{}\" is none of > < * !", text));
    }
    return static_cast<Mark>(text.front());
}

std::vector<std::string> names_in(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty()) {
        const size_t end = std::min(list.find(','), list.size());
        names.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return names;
}

void read_bytes(Recorded& recorded, std::string_view rest) {
    try {
        recorded.bytes = from_hex(next_word(rest));
    } catch (const std::invalid_argument& error) { throw std::runtime_error(error.what()); }
    if (rest.starts_with(kReplaced)) { recorded.replaced = names_in(next_word(rest).substr(kReplaced.size())); }
    recorded.text = rest;
}

// Behind the bytes or what has none there may be words.
void read_rest(Recorded& recorded, std::string_view rest) {
    const Rest kind = rest_of(recorded.mark, recorded.kind);
    if (kind == Rest::kText) {
        recorded.text = rest;
        return;
    }
    if (kind == Rest::kBytes) { read_bytes(recorded, rest); }
    if (kind == Rest::kNothing) { recorded.text = rest; }
    if (!recorded.text.empty() && !recorded.text.starts_with('#')) {
        throw std::runtime_error(fmt::format("\"{}\" has no place in it", recorded.text));
    }
    recorded.text.erase(0, kWords.size());
}

Recorded event_in(std::string_view line) {
    Recorded recorded;
    recorded.time = time_in(next_word(line));
    recorded.mark = mark_in(next_word(line));
    recorded.kind = next_word(line);
    read_rest(recorded, line);
    return recorded;
}

void read_setting(Recording& recording, std::string_view line) {
    const std::string_view name = next_word(line);
    if (std::ranges::find(kSettings, name) == kSettings.end()) {
        throw std::runtime_error(fmt::format("\"{}\" is no setting, and no time either", name));
    }
    recording.settings[std::string(name)] = line;
}

void read_line(Recording& recording, std::string_view line, size_t number) {
    if (line.empty() || line.front() == '#') { return; }
    if (std::isdigit(static_cast<unsigned char>(line.front())) == 0) { return read_setting(recording, line); }
    recording.events.push_back(event_in(line));
    recording.events.back().line = number;
}

// What would end the line, or act on a terminal, makes way.
std::string one_line(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
    return text;
}

}  // namespace

bool is_frame(const Recorded& recorded) noexcept { return recorded.kind == "frame" || recorded.kind == "sealed"; }

std::string to_line(const Recorded& recorded) {
    const int64_t time = recorded.time.count();
    std::string line = fmt::format("{}.{:06} {} {}", time / kMicrosecondsPerSecond, time % kMicrosecondsPerSecond,
                                   static_cast<char>(recorded.mark), recorded.kind);
    const Rest rest = rest_of(recorded.mark, recorded.kind);
    if (rest == Rest::kBytes) { line += " " + to_hex(recorded.bytes); }
    if (!recorded.replaced.empty()) { line += fmt::format(" {}{}", kReplaced, fmt::join(recorded.replaced, ",")); }
    if (recorded.text.empty()) { return line; }
    return line + (rest == Rest::kText ? " " : " # ") + one_line(recorded.text);
}

bool Recording::withholds() const {
    const auto found = settings.find("values");
    return found == settings.end() || found->second != "kept";
}

Recording Recording::parse(std::string_view text) {
    Recording recording;
    // A line that does not end is one that somebody was about to write.
    for (size_t number = 1; text.find('\n') != std::string_view::npos || number == 1; ++number) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        try {
            if (number == 1 && line != kFirstLine) {
                throw std::runtime_error(fmt::format("this is not \"{}\"", kFirstLine));
            }
            if (number > 1) { read_line(recording, line, number); }
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(fmt::format("line {}: {}", number, error.what()));
        }
    }
    return recording;
}

Recording Recording::from_file(const std::string& path) {
    const std::string text = text_of_file(path);
    try {
        return parse(text);
    } catch (const std::runtime_error& error) { throw std::runtime_error(fmt::format("{}: {}", path, error.what())); }
}

}  // namespace quorvel::wire
