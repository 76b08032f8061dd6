// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

#include "simulator/scenario/scenario.h"

namespace quorvel::sim {

namespace {

constexpr ShippedScenario kAll[] = {
#include "scenarios.inc"
};

}  // namespace

std::vector<ShippedScenario> shipped_scenarios() { return {std::begin(kAll), std::end(kAll)}; }

Scenario Scenario::find(const std::string& nameOrPath) {
    const auto* found = std::ranges::find(kAll, nameOrPath, &ShippedScenario::name);
    if (found != std::end(kAll)) { return from_toml(fmt::format("{}.toml", found->name), found->text); }
    if (std::filesystem::exists(nameOrPath)) { return from_file(nameOrPath); }
    throw std::runtime_error(
        fmt::format("there is no scenario \"{}\": no file, and none of those that --list-scenarios names", nameOrPath));
}

}  // namespace quorvel::sim
