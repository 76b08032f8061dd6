// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_EXPECTED_VALUE_H
#define QUORVEL_SIMULATOR_SCENARIO_EXPECTED_VALUE_H

#include <string>
#include <string_view>
#include <vector>

#include "simulator/wire.h"
#include "wire/item.h"

namespace quorvel::sim {

// A parameter or a field that a request has, whatever its value, or with a certain one.
struct ExpectedValue {
    enum class How { kPresent, kEqual, kContaining };

    // As the file has it: SPE_AMOUNT="000000001000", DSP_MSG~"AMOUNT", SPE_TIMEOUT=60, SPE_TAGLIST=9F029F03 or a name.
    std::string words;
    std::string name;
    How how = How::kPresent;
    Bytes value = {};

    // For requests of these commands. Throws std::invalid_argument.
    [[nodiscard]] static ExpectedValue parse(std::string_view words, const std::vector<std::string>& commands);

    [[nodiscard]] bool is_among(const std::vector<Item>& items) const;
};

}  // namespace quorvel::sim

#endif
