// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <utility>

#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

// The lengths count bytes, which travel as two digits each.
Bytes changed_objects(Reader& request) {
    static constexpr size_t kCountWidth = 2;
    const size_t declared = request.n("CMD_LEN1", 3);
    const size_t size = request.n("CNG_EMVDATLEN", kCountWidth);
    if (declared != size + kCountWidth) {
        throw LayoutError(fmt::format("CNG: CMD_LEN1: {} instead of {}", declared, size + kCountWidth));
    }
    Bytes objects = request.h("CNG_EMVDAT", 2 * size);
    request.end();
    return objects;
}

}  // namespace

Answer cng(Call& call) {
    DataObjects changed = decode(changed_objects(call.request));
    auto& transaction = call.device.transaction;
    if (!transaction) { return out_of_sequence(call, "CNG without a chip that was read"); }
    for (auto& [tag, value] : changed) {
        if (transaction->told.contains(tag)) { transaction->told[tag] = value; }
        transaction->objects.insert_or_assign(tag, std::move(value));
    }
    return {};
}

}  // namespace quorvel::sim::commands
