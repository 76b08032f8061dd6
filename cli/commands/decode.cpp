// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/words.h"
#include "wire/hex.h"

namespace quorvel::cli::setup {

namespace {

using wire::Bytes;
using wire::Sender;

struct DecodeOptions {
    std::vector<std::string> hex;
    std::string file;
    std::string from;
};

struct Line {
    std::optional<Sender> sender;
    Bytes bytes;
};

// Pairs of digits with or without blanks and colons; none for anything else.
std::optional<Bytes> parse_hex(std::string_view text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits),
                         [](unsigned char c) { return std::isspace(c) == 0 && c != ':'; });
    if (digits.empty()) { return std::nullopt; }
    try {
        return wire::from_hex(digits);
    } catch (const std::invalid_argument&) { return std::nullopt; }
}

// A request counts its blocks from the fourth byte on, where a response has its status: three digits in either case.
// A first block is never empty, and a response without OK has no blocks.
Sender guess(std::span<const uint8_t> packet) {
    constexpr size_t kHead = 6;
    const std::string_view text(reinterpret_cast<const char*>(packet.data()), packet.size());
    if (packet.size() < kHead || text.substr(3, 3) == "000") {
        return packet.size() < kHead ? Sender::kHost : Sender::kPinPad;
    }
    return packet.size() == kHead ? Sender::kPinPad : Sender::kHost;
}

void add(Table& table, Sender sender, const Group& words) {
    std::vector<Value> row{sender == Sender::kHost ? "host" : "PIN pad", "", "", ""};
    for (const Field& field : words) {
        const size_t column = field.label == "What" ? 1 : field.label == "Status" ? 2 : 3;
        row[column] = field.value;
    }
    table.rows.push_back(std::move(row));
}

// What begins as frames and control bytes do is taken for the line's own bytes, anything else for a packet.
bool is_wire(const Bytes& bytes) { return bytes.front() < ' '; }

void decode(Table& table, const Line& line) {
    if (!is_wire(line.bytes)) {
        const Sender sender = line.sender.value_or(guess(line.bytes));
        add(table, sender, packet_words(sender, line.bytes));
        return;
    }
    wire::FrameDecoder decoder;
    const auto tell = [&](const wire::Reception& reception) {
        const bool acknowledges =
            reception.kind == wire::Reception::Kind::kByte && reception.byte != wire::control::kCan;
        const Sender guessed = acknowledges ? Sender::kPinPad : guess(reception.frame.data);
        const Sender sender = line.sender.value_or(guessed);
        add(table, sender, words(sender, reception));
    };
    for (const uint8_t byte : line.bytes) {
        if (const auto reception = decoder.feed(byte)) { tell(*reception); }
    }
    if (decoder.in_frame()) { tell(decoder.give_up()); }
}

std::optional<Sender> sender_of(std::string_view name) {
    if (name.empty()) { return std::nullopt; }
    return name == "host" ? Sender::kHost : Sender::kPinPad;
}

// Of a capture those lines count that begin with an arrow; without any arrow, every line.
std::vector<Line> capture(std::istream& in, std::optional<Sender> sender) {
    std::vector<std::string> texts;
    for (std::string text; std::getline(in, text);) { texts.push_back(text); }
    const auto hasArrow = [](const std::string& text) { return text.starts_with('>') || text.starts_with('<'); };
    const bool arrows = std::ranges::any_of(texts, hasArrow);
    std::vector<Line> lines;
    for (size_t i = 0; i < texts.size(); ++i) {
        if (arrows ? !hasArrow(texts[i]) : texts[i].find_first_not_of(" \t\r") == std::string::npos) { continue; }
        const auto bytes = parse_hex(std::string_view(texts[i]).substr(arrows ? 1 : 0));
        if (!bytes) { throw Error(Exit::kUsage, fmt::format("Line {} of the capture is not in hexadecimal.", i + 1)); }
        if (!arrows) {
            lines.push_back({sender, *bytes});
        } else {
            lines.push_back({texts[i].front() == '>' ? Sender::kHost : Sender::kPinPad, *bytes});
        }
    }
    return lines;
}

std::vector<Line> lines(const DecodeOptions& options) {
    const auto sender = sender_of(options.from);
    if (!options.hex.empty()) {
        std::string all;
        for (const std::string& part : options.hex) { all += part; }
        const auto bytes = parse_hex(all);
        if (!bytes) { throw Error(Exit::kUsage, "This is not in hexadecimal, two digits a byte."); }
        return {{sender, *bytes}};
    }
    if (options.file.empty() || options.file == "-") { return capture(std::cin, sender); }
    std::ifstream in(options.file);
    if (!in) { throw Error(Exit::kUsage, fmt::format("{} cannot be read.", options.file)); }
    return capture(in, sender);
}

Outcome run_decode(const DecodeOptions& options) {
    Table table{{"From", "What", "Status", "Contents"}};
    for (const Line& line : lines(options)) { decode(table, line); }
    return {{{"Frames", table}}};
}

}  // namespace

Run decode(CLI::App& app) {
    const auto options = std::make_shared<DecodeOptions>();
    app.add_option("hex", options->hex, "Bytes in hexadecimal: frames, control bytes or a packet");
    app.add_option("--file", options->file, "A capture, a line for each direction's bytes; else standard input")
        ->type_name("FILE");
    app.add_option("--from", options->from, "Who sent it, where no arrow tells: host or pinpad")
        ->check(CLI::IsMember({"host", "pinpad"}).description(""))
        ->type_name("SENDER");
    return [options](Context&) { return run_decode(*options); };
}

}  // namespace quorvel::cli::setup
