// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMessageWidth = 32;
constexpr size_t kMaxDisplay = 128;

}  // namespace

Answer clo(Call& call) {
    Reader fields = only_block(call);
    Screen::Content content{.text = text_or(call, fields.s("CLO_MSG", kMessageWidth), Text::kIdle)};
    fields.end();
    call.screen.show(std::move(content));
    return {};
}

Answer clx(Call& call) {
    Screen::Content content;
    for (const Param& param : call.request.params()) {
        Reader value(param_name(param.id), param.data);
        switch (param.id) {
            case spe::kMfName:
                content.media = media_name_in_s(value);
                break;
            case spe::kDspMsg:
                if (value.left() > kMaxDisplay) { throw LayoutError("SPE_DSPMSG: more than 128 characters"); }
                content.text = value.s("text", value.left(), Cr::kAllowed);
                break;
            default:
                throw out_of_place("CLX", param.id);
        }
        value.end();
    }
    if (!content.media.empty() && !call.device.media.has(content.media)) {
        return {.status = Status::kMfnfound, .blocks = {}};
    }
    if (content.media.empty()) { content.text = text_or(call, content.text, Text::kIdle); }
    call.screen.show(std::move(content));
    return {};
}

}  // namespace quorvel::sim::commands
