// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <string>
#include <vector>

#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

// Deletes none of them when one is not there.
Answer dmf(Call& call) {
    const Params params("DMF", call.request, {}, {}, {{spe::kMfName, 1, SIZE_MAX}});
    const std::vector<std::string> names = params.all(spe::kMfName, media_name_in_s);
    Media& media = call.device.media;
    if (!std::ranges::all_of(names, [&](const std::string& name) { return media.has(name); })) {
        return {.status = Status::kMfnfound, .blocks = {}};
    }
    for (const std::string& name : names) { media.remove(name); }
    return {};
}

}  // namespace quorvel::sim::commands
