// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/settings.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>

#include "cli/error.h"
#include "wire/toml.h"

namespace quorvel::cli {

namespace fs = std::filesystem;

namespace {

// None when the variable is not set, or empty.
std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): no thread changes it
    if (value == nullptr || *value == '\0') { return std::nullopt; }
    return value;
}

// An error in a configuration file, with its place in the file.
Error fault(const fs::path& file, size_t line, std::string_view text) {
    return {Exit::kUsage, fmt::format("{}:{}: {}", file.string(), line, text),
            "The keys are described in quorvel(1), under CONFIGURATION."};
}

template <typename Type>
Type value_of(const fs::path& file, const toml::key& key, const toml::node& node, std::string_view kind) {
    const std::optional<Type> value = node.value_exact<Type>();
    if (!value) { throw fault(file, node.source().begin.line, fmt::format("'{}' must be {}", key.str(), kind)); }
    return *value;
}

void apply(Settings& settings, const fs::path& file, const toml::key& key, const toml::node& node) {
    if (key == "port") {
        const auto port = value_of<std::string>(file, key, node, "a text");
        if (!settings.port.empty()) { return; }
        settings.port = port;
        settings.portFrom = Origin::kFile;
    } else if (key == "secure") {
        settings.secure |= value_of<bool>(file, key, node, "true or false");
    } else if (key == "tables") {
        settings.tables = (file.parent_path() / value_of<std::string>(file, key, node, "a text")).string();
    } else {
        throw fault(file, node.source().begin.line, fmt::format("there is no key '{}'", key.str()));
    }
}

void apply(Settings& settings, const fs::path& file) {
    toml::table parsed;
    try {
        parsed = wire::parse_toml(wire::text_of_file(file.string()));
    } catch (const wire::TomlError& error) {
        throw fault(file, error.line(), error.fault());
    } catch (const std::runtime_error& error) { throw Error(Exit::kUsage, fmt::format("{}.", error.what())); }
    for (const auto& [key, node] : parsed) { apply(settings, file, key, node); }
}

// In the order of the enumeration.
constexpr std::array<std::string_view, 4> kOriginNames{
    "nowhere", "the option --port", "the environment variable QUORVEL_PORT", "the configuration file"};

}  // namespace

std::string_view origin_name(Origin origin) noexcept { return kOriginNames[static_cast<size_t>(origin)]; }

fs::path default_config() {
    if (const auto folder = environment("XDG_CONFIG_HOME")) { return fs::path(*folder) / "quorvel" / "config.toml"; }
    if (const auto home = environment("HOME")) { return fs::path(*home) / ".config" / "quorvel" / "config.toml"; }
    return {};
}

void complete(Settings& settings, const std::optional<std::string>& config) {
    if (!settings.port.empty()) {
        settings.portFrom = Origin::kOption;
    } else if (const auto port = environment("QUORVEL_PORT")) {
        settings.port = *port;
        settings.portFrom = Origin::kEnvironment;
    }
    const fs::path file = config ? fs::path(*config) : default_config();
    std::error_code unreadable;
    if (fs::exists(file, unreadable)) {
        apply(settings, file);
    } else if (config) {
        throw Error(Exit::kUsage, fmt::format("There is no configuration file {}.", *config));
    }
}

}  // namespace quorvel::cli
