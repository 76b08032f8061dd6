// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/interrupt.h"
#include "cli/words.h"
#include "wire/command.h"
#include "wire/hex.h"

namespace quorvel::cli::setup {

namespace {

using wire::Bytes;
using wire::Sender;

const std::vector<std::string> kColumns{"From", "What", "Status", "Contents"};

struct DecodeOptions {
    std::vector<std::string> hex;
    std::string file;
    std::string from;
};

struct Line {
    std::optional<Sender> sender;
    Bytes bytes = {};
    // What was written of it in words, for what the bytes do not tell.
    std::string words = {};
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

void add(Table& table, std::string_view from, const Group& words) {
    std::vector<Value> row{std::string(from), "", "", ""};
    for (const Field& field : words) {
        const size_t column = field.label == "What" ? 1 : field.label == "Status" ? 2 : 3;
        row[column] = field.value;
    }
    table.rows.push_back(std::move(row));
}

const char* name_of(const std::optional<Sender>& sender) {
    return !sender ? "line" : *sender == Sender::kHost ? "host" : "PIN pad";
}

bool all_digits(std::string_view text) {
    return std::ranges::all_of(text, [](unsigned char c) { return std::isdigit(c) != 0; });
}

// "GIX 000 OK: PP_SERNUM=...", "GIX device information: SPE_IDLIST=...", or any other text. What was private was
// withheld when it was written.
Group words_of(std::string_view text) {
    constexpr std::string_view kEnciphered = "enciphered ";
    if (text.starts_with(kEnciphered)) { text.remove_prefix(kEnciphered.size()); }
    const std::string_view id = text.substr(0, wire::kIdWidth);
    const wire::Command* command = wire::find_command(id);
    if (command == nullptr) { return {{"What", std::string(text)}}; }
    const size_t colon = std::min(text.find(": "), text.size());
    const std::string_view head = text.substr(0, colon);
    const std::string_view digits = head.size() > id.size() ? head.substr(id.size() + 1, wire::kStatusWidth) : "";
    Group words{{"What", fmt::format("{} {}", id, command->title)}};
    if (digits.size() == wire::kStatusWidth && all_digits(digits)) {
        words.push_back({"Status", Status{std::stoi(std::string(digits))}});
    }
    if (colon < text.size()) { words.push_back({"Contents", std::string(text.substr(colon + 2))}); }
    return words;
}

// What begins as frames and control bytes do is taken for the line's own bytes, anything else for a packet.
bool is_wire(const Bytes& bytes) { return bytes.front() < ' '; }

void decode(Table& table, const Line& line) {
    if (line.bytes.empty()) { return add(table, name_of(line.sender), words_of(line.words)); }
    if (!is_wire(line.bytes)) {
        const Sender sender = line.sender.value_or(guess(line.bytes));
        return add(table, name_of(sender), packet_words(sender, line.bytes));
    }
    wire::FrameDecoder decoder;
    const auto tell = [&](const wire::Reception& reception) {
        const bool acknowledges =
            reception.kind == wire::Reception::Kind::kByte && reception.byte != wire::control::kCan;
        const Sender guessed = acknowledges ? Sender::kPinPad : guess(reception.frame.data);
        const Sender sender = line.sender.value_or(guessed);
        const bool enciphered = reception.kind == wire::Reception::Kind::kFrame && reception.frame.encrypted;
        add(table, name_of(sender),
            enciphered && !line.words.empty() ? words_of(line.words) : words(sender, reception));
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

// What stands behind "2026-07-14 09:15:02.125 " in a trace of the tool's; none where there is no time.
std::optional<std::string_view> behind_time(std::string_view text) {
    constexpr std::string_view kLike = "0000-00-00 00:00:00.000 ";
    const auto fits = [](char c, char like) { return like == '0' ? c >= '0' && c <= '9' : c == like; };
    if (!std::ranges::equal(text.substr(0, kLike.size()), kLike, fits)) { return std::nullopt; }
    return text.substr(kLike.size());
}

bool has_arrow(std::string_view text) { return !text.empty() && std::string_view("><!").find(text.front()) < 3; }

// A line that begins with an arrow or a time, or has nothing but bytes. Those of the virtual PIN pad have words below
// them, which count for bytes that are not all there.
std::optional<Line> line_of(std::string_view text, std::string_view below, std::optional<Sender> sender) {
    Line line{.sender = sender};
    const auto timed = behind_time(text);
    std::string_view said = timed.value_or(text);
    if (has_arrow(said)) {
        line.sender =
            said.front() == '!' ? std::nullopt : std::optional(said.front() == '>' ? Sender::kHost : Sender::kPinPad);
        said = said.substr(std::min(said.find_first_not_of(' ', 1), said.size()));
    }
    if (below.starts_with("  ")) { line.words = below.substr(2); }
    if (timed) {
        line.words = said;
        return line;
    }
    if (said.find(" ... (") != std::string_view::npos && !line.words.empty()) { return line; }
    const auto bytes = parse_hex(said);
    if (!bytes) { return std::nullopt; }
    line.bytes = *bytes;
    return line;
}

// Where any line has an arrow, those count that have one; else every one.
std::vector<Line> capture(const std::vector<std::string>& texts, std::optional<Sender> sender) {
    const auto counts = [](const std::string& text) { return has_arrow(behind_time(text).value_or(text)); };
    const bool arrows = std::ranges::any_of(texts, counts);
    std::vector<Line> lines;
    for (size_t i = 0; i < texts.size(); ++i) {
        const std::string& text = texts[i];
        if (arrows ? !counts(text) : text.find_first_not_of(" \t\r") == std::string::npos) { continue; }
        const auto line = line_of(text, arrows && i + 1 < texts.size() ? texts[i + 1] : "", sender);
        if (!line) { throw Error(Exit::kUsage, fmt::format("Line {} of the capture is not in hexadecimal.", i + 1)); }
        lines.push_back(*line);
    }
    return lines;
}

using Json = nlohmann::ordered_json;

Value value_of(const Json& json) {
    if (json.is_string()) { return json.get<std::string>(); }
    if (!json.is_object()) { return json.dump(); }
    Group group;
    for (const auto& [key, value] : json.items()) { group.push_back({key, value_of(value), key}); }
    return group;
}

// The trace in an object that a command has printed.
Table traced(const Json& object) {
    Table table{kColumns};
    if (!object.is_object() || !object.contains("trace")) {
        throw Error(Exit::kUsage, "The object has no trace.", "Run the command with --json and --trace.");
    }
    for (const Json& entry : object["trace"]) {
        const std::string from = entry.value("from", "line");
        const Json frame = entry.value("frame", Json::object());
        Group words{{"What", frame.value("what", "")}};
        if (frame.contains("status")) { words.push_back({"Status", Status{frame["status"].value("code", 0)}}); }
        if (frame.contains("contents")) { words.push_back({"Contents", value_of(frame["contents"])}); }
        add(table, from == "pinPad" ? "PIN pad" : from, words);
    }
    return table;
}

std::vector<std::string> texts_in(std::istream& in) {
    std::vector<std::string> texts;
    for (std::string text; std::getline(in, text);) { texts.push_back(text); }
    interrupt::check();
    return texts;
}

Table decoded(const std::vector<Line>& lines) {
    Table table{kColumns};
    for (const Line& line : lines) { decode(table, line); }
    return table;
}

Table decoded(const std::vector<std::string>& texts, std::optional<Sender> sender) {
    if (texts.empty() || !texts.front().starts_with('{')) { return decoded(capture(texts, sender)); }
    std::string all;
    for (const std::string& text : texts) { all += text + "\n"; }
    try {
        return traced(Json::parse(all));
    } catch (const Json::exception&) { throw Error(Exit::kUsage, "This is no object that quorvel has printed."); }
}

Outcome run_decode(const DecodeOptions& options) {
    const auto sender = sender_of(options.from);
    if (!options.hex.empty()) {
        std::string all;
        for (const std::string& part : options.hex) { all += part; }
        const auto bytes = parse_hex(all);
        if (!bytes) { throw Error(Exit::kUsage, "This is not in hexadecimal, two digits a byte."); }
        return {{{"Frames", decoded({{.sender = sender, .bytes = *bytes}})}}};
    }
    if (options.file.empty() || options.file == "-") { return {{{"Frames", decoded(texts_in(std::cin), sender)}}}; }
    std::ifstream in(options.file);
    if (!in) { throw Error(Exit::kUsage, fmt::format("{} cannot be read.", options.file)); }
    return {{{"Frames", decoded(texts_in(in), sender)}}};
}

}  // namespace

Run decode(CommandLine& line) {
    const auto options = std::make_shared<DecodeOptions>();
    line.text("hex", options->hex, "HEX", "Bytes in hexadecimal: frames, control bytes or a packet");
    line.text("--file", options->file, "FILE", "A capture, or a trace; else standard input");
    line.word("--from", options->from, {"host", "pinpad"}, "Who sent it, where no arrow tells");
    return [options](Context&) { return run_decode(*options); };
}

}  // namespace quorvel::cli::setup
