// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <optional>
#include <string>

#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t versionWidth = 10;

}  // namespace

Answer gts(Call& call) {
    Reader fields = call.request.block("CMD_LEN1");
    call.request.end();
    const auto acquirer = static_cast<int>(fields.n("GTS_ACQIDX", 2));
    fields.end();
    const std::optional<std::string> version = call.device.tables.version(acquirer);
    if (!version) return {.status = Status::kTaberr, .blocks = {}};
    return Answer::of(Writer().a(*version, versionWidth));
}

}  // namespace quorvel::sim::commands
