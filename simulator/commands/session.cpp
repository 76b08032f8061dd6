// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"
#include "simulator/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t messageWidth = 32;
constexpr size_t mediaNameWidth = 8;
constexpr size_t maxDisplay = 128;

}  // namespace

// With data it asks for an encrypted session. A PIN pad that has none answers as if to the plain form, without a key.
Answer opn(Call& call) {
    if (call.request.left() == 0) return {};
    const Reader keys = call.request.block("CMD_LEN1");
    call.request.end();
    call.journal.record(Finding{Finding::Kind::unsupported, "OPN: an encrypted session was asked for with "
                                                                + std::to_string(keys.left()) + " bytes"});
    return {};
}

Answer clo(Call& call) {
    Reader fields = call.request.block("CMD_LEN1");
    call.request.end();
    static_cast<void>(fields.s("CLO_MSG", messageWidth));
    fields.end();
    return {};
}

Answer clx(Call& call) {
    for (const Param& param : call.request.params()) {
        Reader value(param_name(param.id), param.data);
        switch (param.id) {
            case spe::mfName:
                static_cast<void>(value.s("text", mediaNameWidth));
                break;
            case spe::dspMsg:
                if (param.data.size() > maxDisplay) throw LayoutError("SPE_DSPMSG: more than 128 characters");
                static_cast<void>(value.s("text", param.data.size(), Cr::allowed));
                break;
            default:
                throw out_of_place("CLX", param.id);
        }
        value.end();
    }
    return {};
}

}  // namespace quorvel::sim::commands
