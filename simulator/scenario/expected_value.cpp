// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/scenario/expected_value.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <optional>
#include <stdexcept>

#include "wire/command.h"
#include "wire/hex.h"
#include "wire/param_id.h"

namespace quorvel::sim {

namespace {

using How = ExpectedValue::How;

// None when requests of that command have nothing of the name.
std::optional<Type> type_in(std::string_view command, std::string_view name) {
    if (wire::find_command(command)->form == wire::Command::Form::kParams) {
        const auto id = find_param(name);
        return id ? std::optional(param_content(*id).type) : std::nullopt;
    }
    for (const Field& field : fields_of(command, Sender::kHost)) {
        if (!name.empty() && field.name == name) { return field.content.type; }
    }
    return std::nullopt;
}

Type type_of(std::string_view name, const std::vector<std::string>& commands) {
    for (const std::string& command : commands) {
        if (const auto type = type_in(command, name)) { return *type; }
    }
    throw std::invalid_argument(fmt::format("there is no \"{}\" in {}", name, fmt::join(commands, " or ")));
}

Bytes number_in(std::string_view text) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument(fmt::format("{} is no number", text));
    }
    return {static_cast<uint8_t>(number >> 24), static_cast<uint8_t>(number >> 16), static_cast<uint8_t>(number >> 8),
            static_cast<uint8_t>(number)};
}

Bytes value_in(std::string_view text, Type type) {
    if (type == Type::kNumber) { return number_in(text); }
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return to_bytes(text.substr(1, text.size() - 2));
    }
    if (text.empty()) { throw std::invalid_argument("no value"); }
    if (type == Type::kBytes || type == Type::kObjects) { return from_hex(text); }
    throw std::invalid_argument(fmt::format("{} is no text between quotation marks", text));
}

ByteView without_padding(ByteView text) {
    while (!text.empty() && text.back() == ' ') { text = text.first(text.size() - 1); }
    return text;
}

bool is_equal(const Item& item, ByteView value) {
    if (item.type == Type::kNumber) { return number_of(item.value) == number_of(value); }
    const bool padded = item.type == Type::kText;
    return std::ranges::equal(padded ? without_padding(item.value) : ByteView(item.value),
                              padded ? without_padding(value) : value);
}

}  // namespace

ExpectedValue ExpectedValue::parse(std::string_view words, const std::vector<std::string>& commands) {
    const size_t end = words.find_first_of("=~");
    const std::string_view name = words.substr(0, end);
    ExpectedValue expected{.words = std::string(words), .name = std::string(name)};
    const Type type = type_of(name, commands);
    if (end == std::string_view::npos) { return expected; }
    expected.how = words[end] == '=' ? How::kEqual : How::kContaining;
    expected.value = value_in(words.substr(end + 1), type);
    if (expected.how == How::kContaining && type == Type::kNumber) {
        throw std::invalid_argument(fmt::format("{} is a number, which contains nothing", name));
    }
    return expected;
}

bool ExpectedValue::is_among(const std::vector<Item>& items) const {
    return std::ranges::any_of(items, [this](const Item& item) {
        if (item.name != name) { return false; }
        if (how == How::kEqual) { return is_equal(item, value); }
        return how == How::kPresent
               || std::search(item.value.begin(), item.value.end(), value.begin(), value.end()) != item.value.end()
               || value.empty();
    });
}

}  // namespace quorvel::sim
