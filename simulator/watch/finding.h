// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_FINDING_H
#define QUORVEL_SIMULATOR_WATCH_FINDING_H

#include <chrono>
#include <cstdint>
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
    // Counted from 1, and when it was.
    uint64_t number = 0;
    std::chrono::system_clock::time_point time = {};

    // The same mistake, whenever it was.
    bool operator==(const Finding& other) const { return kind == other.kind && text == other.text; }
};

[[nodiscard]] std::string_view kind_name(Finding::Kind kind) noexcept;
// The field or parameter that the text names first, as "GIN_ACQIDX"; empty when it names none.
[[nodiscard]] std::string field_in(const Finding& finding);
// A line behind its time, with the mark of what neither side has sent.
[[nodiscard]] std::string to_text(const Finding& finding);

}  // namespace quorvel::sim

#endif
