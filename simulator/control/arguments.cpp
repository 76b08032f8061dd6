// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/arguments.h"

#include <fmt/format.h>

namespace quorvel::sim {

using nlohmann::json;

Arguments::Arguments(const json& request) : request_(request) {
    if (!request.is_object()) { throw RequestError("a request is an object"); }
}

std::string Arguments::text(std::string_view name) {
    const json& value = get(name);
    if (!value.is_string()) { throw RequestError(fmt::format("\"{}\" is no text", name)); }
    return value.get<std::string>();
}

std::string Arguments::text(std::string_view name, std::string_view otherwise) {
    return has(name) ? text(name) : std::string(otherwise);
}

int64_t Arguments::number(std::string_view name, int64_t lowest, int64_t highest, std::optional<int64_t> otherwise) {
    if (otherwise && !has(name)) { return *otherwise; }
    const json& value = get(name);
    if (!value.is_number_integer()) { throw RequestError(fmt::format("\"{}\" is no whole number", name)); }
    // One that needs the unsigned type is above every range here.
    const bool fits = !value.is_number_unsigned() || value.get<uint64_t>() <= static_cast<uint64_t>(INT64_MAX);
    if (!fits || value.get<int64_t>() < lowest || value.get<int64_t>() > highest) {
        throw RequestError(fmt::format("\"{}\" is not from {} to {}", name, lowest, highest));
    }
    return value.get<int64_t>();
}

std::optional<double> Arguments::fraction(std::string_view name) {
    const json* value = find(name);
    if (value == nullptr) { return std::nullopt; }
    if (!value->is_number()) { throw RequestError(fmt::format("\"{}\" is no number", name)); }
    return value->get<double>();
}

bool Arguments::flag(std::string_view name) {
    const json* value = find(name);
    if (value == nullptr) { return false; }
    if (!value->is_boolean()) { throw RequestError(fmt::format("\"{}\" is neither true nor false", name)); }
    return value->get<bool>();
}

const json& Arguments::list(std::string_view name) {
    const json& value = get(name);
    if (!value.is_array()) { throw RequestError(fmt::format("\"{}\" is no list", name)); }
    return value;
}

const json& Arguments::object(std::string_view name) {
    const json& value = get(name);
    if (!value.is_object()) { throw RequestError(fmt::format("\"{}\" is no object", name)); }
    return value;
}

void Arguments::end() const {
    for (const auto& [name, value] : request_.items()) {
        if (!read_.contains(name)) { throw RequestError(fmt::format("\"{}\" has no place in it", name)); }
    }
}

const json* Arguments::find(std::string_view name) {
    read_.emplace(name);
    const auto found = request_.find(name);
    return found != request_.end() ? &*found : nullptr;
}

const json& Arguments::get(std::string_view name) {
    const json* value = find(name);
    if (value == nullptr) { throw RequestError(fmt::format("no \"{}\"", name)); }
    return *value;
}

}  // namespace quorvel::sim
