// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/recording/stand_in.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>

#include "wire/hex.h"
#include "wire/packet.h"
#include "wire/tag.h"

namespace quorvel::sim {

namespace {

// Published test numbers; of another length there is none, and the digits of the last repeat.
constexpr std::array<std::string_view, 4> kNumbers{"4222222222222", "30569309025904", "378282246310005",
                                                   "4111111111111111"};
constexpr std::string_view kName = "CARDHOLDER/TEST";
constexpr std::string_view kExpiry = "301231";
constexpr std::string_view kTrackExpiry = "3012";
constexpr size_t kServiceCode = 3;
constexpr size_t kBlockDigits = 3;

bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

std::string text_of(ByteView bytes) { return {bytes.begin(), bytes.end()}; }

std::string number(size_t digits) {
    const auto* found = std::ranges::find(kNumbers, digits, &std::string_view::size);
    std::string number(found != kNumbers.end() ? *found : kNumbers.back());
    while (number.size() < digits) { number += kNumbers.back(); }
    return number.substr(0, digits);
}

// Blanks and what a mask has left out stay as they are.
std::string pan(std::string text) {
    const auto belongs = [](char c) { return c != ' '; };
    const std::string digits = number(static_cast<size_t>(std::ranges::count_if(text, belongs)));
    auto next = digits.begin();
    for (char& c : text) {
        if (belongs(c) && c != '*') { c = *next; }
        if (belongs(c)) { ++next; }
    }
    return text;
}

std::string name(const std::string& text) {
    return std::string(kName.substr(0, text.size()))
           + std::string(text.size() - std::min(text.size(), kName.size()), ' ');
}

std::string zeros(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return std::isalnum(c) != 0; }, '0');
    return text;
}

// Behind the number: when the card expires, what it is good for, and what only its issuer can read.
std::string discretionary(const std::string& text) {
    std::string kept = zeros(text);
    kTrackExpiry.copy(kept.data(), std::min(kept.size(), kTrackExpiry.size()));
    if (text.size() > kTrackExpiry.size()) { text.copy(&kept[kTrackExpiry.size()], kServiceCode, kTrackExpiry.size()); }
    return kept;
}

// "B4111111111111111^NAME^3012201..."
std::string first_track(const std::string& text, size_t end) {
    const size_t behind = std::min(text.find('^', end + 1), text.size());
    const std::string holder = text.substr(end + 1, behind - end - 1);
    std::string track = text.substr(0, 1) + pan(text.substr(1, end - 1)) + "^" + name(holder);
    if (behind < text.size()) { track += "^" + discretionary(text.substr(behind + 1)); }
    return track;
}

// "4111111111111111=3012201..."; the third track has a format of two digits before the number.
std::string track(const std::string& text, bool third) {
    const size_t end = text.find_first_of("^=");
    if (end == std::string::npos) { return zeros(text); }
    if (text[end] == '^') { return end == 0 ? zeros(text) : first_track(text, end); }
    const size_t begin = third ? std::min<size_t>(2, end) : 0;
    const std::string behind = text.substr(end + 1);
    return text.substr(0, begin) + pan(text.substr(begin, end - begin)) + "="
           + (third ? zeros(behind) : discretionary(behind));
}

// Two digits a byte, D before what is behind the number, filled up with F.
Bytes packed_track(ByteView bytes, bool third) {
    std::string text = to_hex(bytes);
    std::ranges::replace(text, 'D', '=');
    const bool filled = text.ends_with('F');
    if (filled) { text.pop_back(); }
    text = track(text, third) + (filled ? "F" : "");
    std::ranges::replace(text, '=', 'D');
    return from_hex(text);
}

Bytes packed_pan(ByteView bytes) {
    std::string text = to_hex(bytes);
    const size_t size = std::min(text.find('F'), text.size());
    return from_hex(number(size) + std::string(text.size() - size, 'F'));
}

// The last option of a menu, or as short a number as may be.
Bytes typed(ByteView value) {
    Bytes digits(value.size(), '0');
    if (!digits.empty()) { digits.back() = '1'; }
    return digits;
}

// The parts of a card that GCR tells behind one another: where each begins and how wide it is.
struct Part {
    size_t at;
    size_t width;
    std::string (*replace)(const std::string& text);
};
constexpr std::array kCard{
    Part{2, 76, [](const std::string& text) { return track(text, false); }},
    Part{80, 37, [](const std::string& text) { return track(text, false); }},
    Part{120, 104, [](const std::string& text) { return track(text, true); }},
    Part{226, 19, [](const std::string& text) { return pan(text); }},
    Part{266, 26, [](const std::string& text) { return name(text); }},
    Part{292, 6, [](const std::string&) { return std::string(kExpiry); }},
};

Bytes whole_card(ByteView value) {
    std::string text = text_of(value);
    for (const auto& [at, width, replace] : kCard) { text.replace(at, width, replace(text.substr(at, width))); }
    // An enciphered second track may go on where else the length of the third one stands.
    if (text.substr(78, 2) > "37") { text.replace(117, 3, 3, '0'); }
    return to_bytes(text);
}

// Of what is in no table only the lengths stay: three digits that count what is behind them, as bytes or as pairs.
Bytes blocks(ByteView value) {
    std::string text(value.size(), '0');
    for (size_t at = 0; at + kBlockDigits <= value.size(); at += kBlockDigits) {
        const std::string digits = text_of(value.subspan(at, kBlockDigits));
        const size_t left = value.size() - at - kBlockDigits;
        if (!std::ranges::all_of(digits, is_digit)) { break; }
        const size_t claimed = std::stoul(digits);
        if (claimed != left && 2 * claimed != left) { break; }
        text.replace(at, kBlockDigits, digits);
    }
    return to_bytes(text);
}

bool is_text(const Item& item) { return item.type != Type::kBytes && item.type != Type::kObjects; }

bool is_track(const std::string& name) { return name == "PP_TRACK1" || name.ends_with("INC"); }

bool is_printable(ByteView bytes) {
    return std::ranges::all_of(bytes, [](uint8_t c) { return c >= ' ' && c <= '~'; });
}

Bytes objects(const Item& item, std::vector<std::string>& replaced);

// Of the same length.
Bytes replacement(const Item& item) {
    const ByteView value = item.value;
    const bool holdsTrack = is_track(item.name) && is_printable(value);
    if (item.name.empty()) { return blocks(value); }
    if (item.name == "PP_VALUE") { return typed(value); }
    if (item.name == "GCR_CARD") { return whole_card(value); }
    if (item.type == Type::kPan || item.name == "GPN_PAN") { return to_bytes(pan(text_of(value))); }
    if (item.type == Type::kPackedPan) { return packed_pan(value); }
    if (item.name == "57" || item.name == "PP_TRACK2") { return packed_track(value, false); }
    if (item.name == "PP_TRACK3") { return packed_track(value, true); }
    if (item.name == "PP_CHNAME" || item.name == "5F20") { return to_bytes(name(text_of(value))); }
    if (item.name == "PP_CARDEXP" && value.size() == kExpiry.size()) { return to_bytes(kExpiry); }
    if (item.name == "5F24" && 2 * value.size() == kExpiry.size()) { return from_hex(kExpiry); }
    if (holdsTrack) { return to_bytes(track(text_of(value), item.name.find('3') != std::string::npos)); }
    return Bytes(value.size(), is_text(item) ? uint8_t{'0'} : uint8_t{0});
}

Bytes open_parts(const Item& item, std::vector<std::string>& replaced, const std::string& path) {
    if (item.privacy == Privacy::kShown) { return item.parts.empty() ? item.value : objects(item, replaced); }
    replaced.push_back(path);
    return replacement(item);
}

// A length that was written in more bytes than it takes would come back shorter: then nothing of it stays.
Bytes objects(const Item& item, std::vector<std::string>& replaced) {
    Bytes all;
    for (const Item& part : item.parts) {
        append(all,
               encode({{part.id, open_parts(part, replaced, fmt::format("{}/{}", item.name, part.name))}}, {part.id}));
    }
    return all.size() == item.value.size() ? all : Bytes(item.value.size());
}

// What is no id may be the middle of anything.
void hide_id(StandIn& made) {
    std::fill_n(made.packet.begin(), std::min(made.packet.size(), kIdWidth), uint8_t{'X'});
    made.replaced.emplace_back("id");
}

}  // namespace

StandIn stand_in(Sender sender, ByteView packet) {
    StandIn made{.packet = {packet.begin(), packet.end()}, .replaced = {}};
    const Packet apart = take_apart(sender, packet);
    if (!looks_like_id(apart.id)) { hide_id(made); }
    for (const Item& item : apart.items) {
        const Bytes value = open_parts(item, made.replaced, item.name.empty() ? "rest" : item.name);
        std::ranges::copy(value, made.packet.begin() + static_cast<std::ptrdiff_t>(item.at));
    }
    return made;
}

}  // namespace quorvel::sim
