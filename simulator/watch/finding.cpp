// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/finding.h"

namespace quorvel::sim {

std::string_view kind_name(Finding::Kind kind) noexcept {
    switch (kind) {
        case Finding::Kind::framing:
            return "framing";
        case Finding::Kind::layout:
            return "layout";
        case Finding::Kind::sequence:
            return "sequence";
        case Finding::Kind::unsupported:
            return "unsupported";
        case Finding::Kind::internal:
            return "internal";
    }
    return "";
}

}  // namespace quorvel::sim
