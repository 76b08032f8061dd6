// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <vector>

#include "simulator/commands/handlers.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

Answer lmf(Call& call) {
    call.request.end();
    std::vector<Param> names;
    for (const auto& [name, file] : call.device.media.files()) {
        names.push_back({pp::kMfName, Writer().a(name, kMediaNameWidth).bytes()});
    }
    return Answer::of(names);
}

}  // namespace quorvel::sim::commands
