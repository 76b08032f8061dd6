// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

// Of a DUKPT key for PINs: the same methods as those that encipher a PIN block.
Answer gdu(Call& call) {
    static constexpr uint64_t kDesMethod = 2;
    static constexpr uint64_t kTdesMethod = 3;
    Reader fields = only_block(call);
    const uint64_t method = fields.n("GDU_METHOD", 1, {kDesMethod, kTdesMethod});
    const auto index = static_cast<int>(fields.n("GDU_IDX", 2));
    fields.end();
    const KeyStrength strength = method == kDesMethod ? KeyStrength::kDes : KeyStrength::kTdes;
    const auto ksn = call.device.keys.ksn(strength, KeyUse::kPin, index);
    if (!ksn) { return {.status = Status::kErrkey, .blocks = {}}; }
    return Answer::of(Writer().h(*ksn, 2 * ksn->size()));
}

}  // namespace quorvel::sim::commands
