// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_FINDING_H
#define QUORVEL_SIMULATOR_WATCH_FINDING_H

#include <string>
#include <string_view>

namespace quorvel::sim {

// Something that the host did wrong, or that the virtual PIN pad could not do.
struct Finding {
    enum class Kind {
        kFraming,      // bytes or frames that the link does not know
        kLayout,       // a command whose fields are not as they must be
        kSequence,     // a command or an answer at the wrong time
        kMoney,        // an amount, a currency, an acquirer or a date that cannot be meant
        kUnsupported,  // a command or an item that this PIN pad does not have
        kInternal,     // the virtual PIN pad's own failure
    };

    Kind kind = Kind::kInternal;
    std::string text;

    bool operator==(const Finding&) const = default;
};

[[nodiscard]] std::string_view kind_name(Finding::Kind kind) noexcept;

}  // namespace quorvel::sim

#endif
