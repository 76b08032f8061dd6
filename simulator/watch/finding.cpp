// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/finding.h"

#include <array>
#include <fmt/format.h>
#include <regex>

#include "simulator/watch/clock.h"
#include "simulator/wire.h"
#include "wire/named.h"

namespace quorvel::sim {

std::string_view kind_name(Finding::Kind kind) noexcept {
    using enum Finding::Kind;
    static constexpr std::array kNames{Named{"framing", kFraming},         Named{"layout", kLayout},
                                       Named{"sequence", kSequence},       Named{"money", kMoney},
                                       Named{"unsupported", kUnsupported}, Named{"internal", kInternal}};
    return name_among(kNames, kind);
}

std::string field_in(const Finding& finding) {
    static const std::regex kName("\\b[A-Z]+_[A-Z0-9]+\\b");
    std::smatch found;
    return std::regex_search(finding.text, found, kName) ? found.str() : "";
}

std::string to_text(const Finding& finding) {
    return fmt::format("{} ! {}: {}\n", time_text(finding.time), kind_name(finding.kind), finding.text);
}

}  // namespace quorvel::sim
