// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/output.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

#include "cli/explain.h"
#include "cli/library.h"

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

// Texts of the PIN pad may hold what a terminal would act on, and bytes that are no UTF-8.
std::string printable(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        safe += byte < 0x20 || byte >= 0x7F ? fmt::format("\\x{:02X}", byte) : std::string(1, c);
    }
    return safe;
}

bool is_nested(const Value& value) {
    return std::holds_alternative<Group>(value.data) || std::holds_alternative<Table>(value.data);
}

void write_line(std::FILE* to, std::string_view text) {
    fmt::print(to, "{}\n", text);
    std::fflush(to);
}

}  // namespace

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
                                 [this](const Group& group) { return line_of(group); },
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

void Output::notice(std::string_view text) const {
    if (!style_.json) { write_line(stderr, printable(text)); }
}

void Output::progress(std::string_view label, uint64_t done, uint64_t total) const {
    constexpr uint64_t kCells = 30;
    if (style_.json || isatty(STDERR_FILENO) != 1) { return; }
    const uint64_t filled = total == 0 ? kCells : done * kCells / total;
    fmt::print(stderr, "\r{} [{:<{}}] {:>3}%{}", label, std::string(filled, '#'), kCells,
               total == 0 ? 100 : done * 100 / total, done == total ? "\n" : "");
    std::fflush(stderr);
}

void Output::trace(char arrow, const Group& words) {
    const std::lock_guard lock(tracing_);
    if (style_.json) {
        traced_.push_back(Json{{"from", arrow == '>' ? "host" : "pinPad"}, {"frame", json_of(words)}});
        return;
    }
    std::string text;
    for (const Field& field : words) { text += (text.empty() ? "" : ": ") + text_of(field.value); }
    write_line(stderr, fmt::format("{} {}", arrow, text));
}

void Output::result(const Group& report, Exit exit) const {
    if (style_.json) {
        Json object = envelope(exit);
        object["result"] = json_of(report);
        if (!traced_.empty()) { object["trace"] = traced_; }
        write_line(stdout, object.dump(2));
        return;
    }
    std::string text;
    print(report, 0, text);
    raw(text);
}

void Output::failure(const Error& error) const {
    if (!style_.json) {
        write_line(stderr, "quorvel: " + printable(error.what()));
        if (!error.remedy().empty()) { write_line(stderr, "  " + error.remedy()); }
        return;
    }
    Json object = envelope(error.exit());
    Json& described = object["error"];
    described["text"] = printable(error.what());
    if (!error.remedy().empty()) { described["remedy"] = printable(error.remedy()); }
    if (const auto* raised = dynamic_cast<const LibraryError*>(&error)) {
        described["raised"] = call([raised] { return kor_result_to_string(raised->code()); });
    }
    if (const auto* answered = dynamic_cast<const StatusError*>(&error)) {
        described["status"] = json_of(Value(Status{answered->status()}));
    }
    if (!traced_.empty()) { object["trace"] = traced_; }
    write_line(stdout, object.dump(2));
}

void Output::raw(std::string_view text) {
    fmt::print(stdout, "{}", text);
    std::fflush(stdout);
}

}  // namespace quorvel::cli
