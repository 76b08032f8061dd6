// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/finding.h"

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

}  // namespace quorvel::sim
