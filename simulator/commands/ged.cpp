// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/emv_params.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

// Of the transaction, whether or not its card is still there.
Answer ged(Call& call) {
    const Params params("GED", call.request, {spe::kTagList});
    const std::vector<Tag> tags = params.get(spe::kTagList, tag_list);
    const auto& transaction = call.device.transaction;
    if (!transaction) { return out_of_sequence(call, "GED without a chip that was read"); }
    return with_emv_data({}, transaction->objects, tags);
}

}  // namespace quorvel::sim::commands
