// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/output.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "cli/explain.h"
#include "cli/interrupt.h"
#include "cli/stream.h"

namespace quorvel::cli {

namespace {

constexpr int kFormatVersion = 1;
constexpr size_t kStep = 2;

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// "Serial number" becomes "serialNumber", "OS version" becomes "osVersion".
std::string key_of(std::string_view label) {
    std::string key;
    bool first = true;
    for (size_t begin = 0; begin < label.size();) {
        const size_t end = std::min(label.find_first_of(" -", begin), label.size());
        for (size_t i = begin; i < end; ++i) {
            const auto c = static_cast<unsigned char>(label[i]);
            if (std::isalnum(c) == 0) { continue; }
            const bool upper = !first && i == begin;
            key += static_cast<char>(upper ? std::toupper(c) : first ? std::tolower(c) : c);
        }
        first = false;
        begin = end + 1;
    }
    return key;
}

std::string key_of(const Field& field) { return field.key.empty() ? key_of(field.label) : field.key; }

// Of a character in UTF-8 that a terminal only shows, the bytes; 0 for anything else, and for some that are rare.
size_t length_of_character(std::string_view text) {
    const auto byte = [&](size_t i) { return i < text.size() ? static_cast<uint8_t>(text[i]) : 0U; };
    const bool three = (byte(0) > 0xE0 && byte(0) < 0xED) || byte(0) == 0xEF;
    const size_t length = byte(0) >= 0xC2 && byte(0) < 0xE0 ? 2 : three ? 3 : 0;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) { return 0; }
    }
    // Controls, and what turns the direction of writing.
    const bool acts = (byte(0) == 0xC2 && byte(1) < 0xA0) || (byte(0) == 0xE2 && byte(1) < 0x82);
    return acts ? 0 : length;
}

// Texts of the PIN pad may hold what a terminal would act on; their accented letters are a byte each (ISO 8859-1).
std::string printable(std::string_view text) {
    std::string safe;
    while (!text.empty()) {
        const auto byte = static_cast<uint8_t>(text.front());
        const size_t length = byte >= 0x20 && byte < 0x7F ? 1 : length_of_character(text);
        if (length > 0) {
            safe += text.substr(0, length);
        } else if (byte >= 0xA0) {
            safe += static_cast<char>(0xC0 | byte >> 6);
            safe += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            safe += fmt::format("\\x{:02X}", byte);
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return safe;
}

bool is_nested(const Value& value) {
    return std::holds_alternative<Group>(value.data) || std::holds_alternative<Table>(value.data);
}

// "GCX read a card" without the words for those who do not know it.
std::string_view id_of(std::string_view what) { return what.substr(0, what.find(' ')); }

}  // namespace

Output::Output(Style style) : style_(std::move(style)), traced_(std::make_unique<Json>(Json::array())) {}

Output::~Output() = default;

// Short numbers would show too much with ten digits in clear.
std::string Output::shown(const Pan& pan) const {
    constexpr size_t kLeading = 6;
    constexpr size_t kTrailing = 4;
    constexpr size_t kShortest = 13;
    const std::string& digits = pan.digits;
    if (style_.reveal) { return printable(digits); }
    if (digits.size() < kShortest) { return std::string(digits.size(), '*'); }
    return printable(digits.substr(0, kLeading)) + std::string(digits.size() - kLeading - kTrailing, '*')
           + printable(digits.substr(digits.size() - kTrailing));
}

std::string Output::shown(const Secret& secret) const {
    if (style_.reveal) { return printable(secret.text); }
    return secret.text.empty() ? "none" : "withheld";
}

std::string Output::text_of(const Value& value) const {
    return std::visit(Overloaded{[](bool truth) { return std::string(truth ? "yes" : "no"); },
                                 [](int64_t number) { return fmt::format("{}", number); },
                                 [](const std::string& text) { return printable(text); },
                                 [this](const Pan& pan) { return shown(pan); },
                                 [this](const Secret& secret) { return shown(secret); },
                                 [](const Status& status) {
                                     const StatusMeaning meaning = explain_status(status.code);
                                     return fmt::format("{:03} {}: {}", meaning.code, meaning.name, meaning.meaning);
                                 },
                                 [this](const Group& group) { return fmt::format("{{{}}}", line_of(group)); },
                                 [](const Table& table) { return fmt::format("{} rows", table.rows.size()); }},
                      value.data);
}

std::string Output::line_of(const Group& group) const {
    std::string line;
    for (const Field& field : group) {
        line += fmt::format("{}{}={}", line.empty() ? "" : ", ", field.label, text_of(field.value));
    }
    return line;
}

Output::Json Output::json_of(const Value& value) const {
    return std::visit(Overloaded{[](bool truth) { return Json(truth); }, [](int64_t number) { return Json(number); },
                                 [](const Status& status) {
                                     const StatusMeaning meaning = explain_status(status.code);
                                     return Json{{"code", meaning.code},
                                                 {"name", "ST_" + std::string(meaning.name)},
                                                 {"meaning", meaning.meaning}};
                                 },
                                 [this](const Group& group) { return json_of(group); },
                                 [this](const Table& table) { return json_of(table); },
                                 [this, &value](const auto&) { return Json(text_of(value)); }},
                      value.data);
}

Output::Json Output::json_of(const Group& group) const {
    Json object = Json::object();
    for (const Field& field : group) { object[key_of(field)] = json_of(field.value); }
    return object;
}

Output::Json Output::json_of(const Table& table) const {
    Json rows = Json::array();
    for (const auto& row : table.rows) {
        Json object = Json::object();
        for (size_t i = 0; i < row.size(); ++i) { object[key_of(table.columns[i])] = json_of(row[i]); }
        rows.push_back(std::move(object));
    }
    return rows;
}

Output::Json Output::envelope(Exit exit) const {
    return Json{{"quorvel", kFormatVersion},
                {"command", style_.command},
                {"ok", exit == Exit::kOk},
                {"exit", static_cast<int>(exit)}};
}

void Output::print(const Group& group, size_t indent, std::string& to) const {
    size_t width = 0;
    for (const Field& field : group) {
        if (!is_nested(field.value)) { width = std::max(width, field.label.size()); }
    }
    for (const Field& field : group) {
        const std::string margin(indent, ' ');
        if (!is_nested(field.value)) {
            to += fmt::format("{}{:<{}}  {}\n", margin, field.label, width, text_of(field.value));
            continue;
        }
        to += fmt::format("{}{}\n", margin, field.label);
        if (const auto* inner = std::get_if<Group>(&field.value.data)) {
            print(*inner, indent + kStep, to);
        } else {
            print(std::get<Table>(field.value.data), indent + kStep, to);
        }
    }
}

void Output::print(const Table& table, size_t indent, std::string& to) const {
    std::vector<std::vector<std::string>> lines{table.columns};
    for (const auto& row : table.rows) {
        std::vector<std::string>& line = lines.emplace_back();
        for (const Value& cell : row) { line.push_back(text_of(cell)); }
    }
    std::vector<size_t> widths(table.columns.size());
    for (const auto& line : lines) {
        for (size_t i = 0; i < line.size(); ++i) { widths[i] = std::max(widths[i], line[i].size()); }
    }
    for (const auto& line : lines) {
        std::string text(indent, ' ');
        for (size_t i = 0; i < line.size(); ++i) { text += fmt::format("{:<{}}  ", line[i], widths[i]); }
        to += text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
    }
    if (table.rows.empty()) { to += std::string(indent, ' ') + "(none)\n"; }
}

std::string Output::below_bar(std::string_view text) const {
    const char* end = barOpen_ ? "\n" : "";
    barOpen_ = false;
    return fmt::format("{}{}\n", end, text);
}

// While the PIN pad may be waiting nobody who reads slowly is waited for; once the command is over, there is time.
void Output::say(std::string_view text) const { stream::offer(STDERR_FILENO, below_bar(text)); }
void Output::say_at_last(std::string_view text) const { stream::write(STDERR_FILENO, below_bar(text)); }

void Output::notice(std::string_view text) const {
    if (!style_.json) { say(printable(text)); }
}

void Output::progress(std::string_view label, uint64_t done, uint64_t total) const {
    constexpr uint64_t kCells = 30;
    if (style_.json || isatty(STDERR_FILENO) != 1) { return; }
    const uint64_t filled = total == 0 ? kCells : done * kCells / total;
    barOpen_ = done != total;
    stream::offer(STDERR_FILENO, fmt::format("\r{} [{:<{}}] {:>3}%{}", label, std::string(filled, '#'), kCells,
                                             total == 0 ? 100 : done * 100 / total, barOpen_ ? "" : "\n"));
}

void Output::trace_to(const std::string& path) {
    constexpr mode_t kOwnerOnly = 0600;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kOwnerOnly);
    if (file < 0) { throw Error(Exit::kUsage, fmt::format("{} cannot be written.", path)); }
    traceFile_.emplace(file, "open");
}

// "2026-07-14 09:15:02.125 < GIX 000 OK: PP_SERNUM=QV00000001", as the virtual PIN pad words it.
std::string Output::trace_line(const Traced& traced) const {
    std::string text;
    for (const Field& field : traced.words) {
        if (const auto* status = std::get_if<Status>(&field.value.data)) {
            const StatusMeaning meaning = explain_status(status->code);
            text = fmt::format("{} {:03} {}", id_of(text), meaning.code, meaning.name);
        } else {
            const auto* group = std::get_if<Group>(&field.value.data);
            text += (text.empty() ? "" : ": ") + (group != nullptr ? line_of(*group) : text_of(field.value));
        }
    }
    return fmt::format("{} {} {}{}\n", traced.time, traced.arrow, traced.encrypted ? "enciphered " : "", text);
}

void Output::trace(const Traced& traced) {
    if (traceFile_ && !stream::offer(traceFile_->get(), trace_line(traced))) {
        traceFile_.reset();
        notice("The trace file cannot be written to its end.");
    }
    if (!style_.trace) { return; }
    if (!style_.json) {
        const std::string line = trace_line(traced);
        return say(std::string_view(line).substr(0, line.size() - 1));
    }
    Json entry{{"time", traced.time}, {"from", traced.arrow == '>' ? "host" : traced.arrow == '<' ? "pinPad" : "line"}};
    if (traced.encrypted) { entry["encrypted"] = true; }
    entry["frame"] = json_of(traced.words);
    traced_->push_back(std::move(entry));
}

Exit Output::deliver(const std::function<std::string(Exit)>& text, Exit exit) const {
    const int error = stream::write(STDOUT_FILENO, text(exit));
    if (error == 0) { return exit; }
    const Exit lost = exit == Exit::kOk ? Exit::kUnwritten : exit;
    say_at_last(fmt::format("quorvel: The result cannot be written to standard output: {}. This is it:\n{}",
                            std::generic_category().message(error), text(lost)));
    return lost;
}

Exit Output::raw(const std::string& text) const {
    return deliver([&](Exit) { return text; }, Exit::kOk);
}

Output::Json Output::json_of(const Error& error) const {
    Json described{{"text", printable(error.what())}};
    if (!error.remedy().empty()) { described["remedy"] = printable(error.remedy()); }
    if (const auto* raised = dynamic_cast<const LibraryError*>(&error)) {
        described["raised"] = std::string(quorvel::name(raised->code()));
    }
    if (const auto* answered = dynamic_cast<const StatusError*>(&error)) {
        described["status"] = json_of(Value(Status{answered->status().code()}));
    }
    return described;
}

Output::Json Output::object_of(const Group& report, Exit exit, const Error* failure) const {
    Json object = envelope(exit);
    if (!report.empty() || failure == nullptr) { object["result"] = json_of(report); }
    if (failure != nullptr) { object["error"] = json_of(*failure); }
    if (!traced_->empty()) { object["trace"] = *traced_; }
    return object;
}

Exit Output::result(const Group& report, Exit exit, const Error* failure) const {
    if (style_.json) {
        return deliver([&](Exit end) { return object_of(report, end, failure).dump(2) + "\n"; }, exit);
    }
    if (failure != nullptr) { this->failure(*failure); }
    std::string text;
    print(report, 0, text);
    return deliver([&](Exit) { return text; }, exit);
}

void Output::line(const Group& report) const {
    const std::string text = (style_.json ? json_of(report).dump() : line_of(report)) + "\n";
    if (raw(text) != Exit::kOk) { throw Error(Exit::kUnwritten, "Nobody reads what is told."); }
}

std::string Output::last_text(const Group& report, Exit exit) const {
    const Error error(exit, "Interrupted, and the PIN pad did not answer: it may not be idle.");
    if (style_.json) { return object_of(report, exit, &error).dump(2) + "\n"; }
    if (report.empty()) { return fmt::format("quorvel: {}\n", error.what()); }
    std::string text;
    print(report, 0, text);
    return text;
}

void Output::last_words(const Group& report, std::optional<Exit> exit) const {
    constexpr std::array kBySignal{Exit::kHungUp, Exit::kInterrupted, Exit::kTerminated};
    std::array<interrupt::Words, kBySignal.size()> words;
    for (size_t i = 0; i < words.size(); ++i) {
        const Exit each = exit.value_or(kBySignal[i]);
        words[i] = {last_text(report, each), each};
    }
    interrupt::last_words(style_.json || !report.empty() ? STDOUT_FILENO : STDERR_FILENO, std::move(words));
}

void Output::failure(const Error& error) const {
    if (style_.json) {
        deliver([&](Exit end) { return object_of({}, end, &error).dump(2) + "\n"; }, error.exit());
        return;
    }
    say_at_last("quorvel: " + printable(error.what()) + (error.remedy().empty() ? "" : "\n  " + error.remedy()));
}

}  // namespace quorvel::cli
