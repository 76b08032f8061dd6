// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_SETTINGS_H
#define QUORVEL_CLI_SETTINGS_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::cli {

// Where the port was named.
enum class Origin { kNowhere, kOption, kEnvironment, kFile };

// What holds for every command.
struct Settings {
    std::string port = {};
    Origin portFrom = Origin::kNowhere;
    bool secure = false;
    // Use a port that another program has open.
    bool force = false;
    // For `sale` and `tables load`, when they name none; relative to the configuration file.
    std::string tables = {};
};

// "--port", "QUORVEL_PORT", or the file.
[[nodiscard]] std::string_view origin_name(Origin origin) noexcept;

// $XDG_CONFIG_HOME/quorvel/config.toml, or the same under ~/.config; empty without a home.
[[nodiscard]] std::filesystem::path default_config();

// Fills what the command line left open, first from the environment, then from the file: the given one, which must be
// there, or the default one, which need not. Throws Error.
void complete(Settings& settings, const std::optional<std::string>& config);

}  // namespace quorvel::cli

#endif
