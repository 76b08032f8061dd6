// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <optional>
#include <string>

#include "simulator/commands/handlers.h"
#include "simulator/commands/widths.h"

namespace quorvel::sim::commands {

Answer gts(Call& call) {
    Reader fields = only_block(call);
    const auto acquirer = static_cast<int>(fields.n("GTS_ACQIDX", 2));
    fields.end();
    const std::optional<std::string> version = call.device.tables.version(acquirer);
    if (!version) { return {.status = Status::kTaberr, .blocks = {}}; }
    return Answer::of(Writer().a(*version, kTableVersionWidth));
}

}  // namespace quorvel::sim::commands
