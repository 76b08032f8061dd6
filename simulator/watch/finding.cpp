// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/finding.h"

#include <fmt/format.h>
#include <regex>

#include "simulator/watch/clock.h"

namespace quorvel::sim {

std::string_view kind_name(Finding::Kind kind) noexcept {
    switch (kind) {
        case Finding::Kind::kFraming:
            return "framing";
        case Finding::Kind::kLayout:
            return "layout";
        case Finding::Kind::kSequence:
            return "sequence";
        case Finding::Kind::kMoney:
            return "money";
        case Finding::Kind::kUnsupported:
            return "unsupported";
        case Finding::Kind::kInternal:
            return "internal";
    }
    return "";
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
