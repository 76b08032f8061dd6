// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <string>
#include <utility>

#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

Answer dsi(Call& call) {
    const Params params("DSI", call.request, {spe::kMfName});
    std::string name = params.get(spe::kMfName, media_name);
    if (!call.device.media.has(name)) { return {.status = Status::kMfnfound, .blocks = {}}; }
    call.screen.show({.media = std::move(name)});
    return {};
}

}  // namespace quorvel::sim::commands
