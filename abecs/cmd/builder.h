// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_BUILDER_PRIVATE_H
#define QUORVEL_ABECS_CMD_BUILDER_PRIVATE_H

#include "abecs/data/limits.h"
#include "core/buffer.h"
#include "quorvel/abecs/cmd/builder.h"

struct AbecsCmdBuilder {
    char cmdId[4] = "";
    kor::InlineBuffer<abecs::kMaxBlock> first;
    kor::InlineBuffer<abecs::kMaxBlock> second;
    KorBuffer* blk1 = &first.buffer;
    KorBuffer* blk2 = &second.buffer;
};

namespace abecs {

// Building consumes the blocks. A command that lets its builder be sent again saves them first and restores them
// afterwards. A null builder is ignored.
struct BuilderState {
    KorBufferState blk1;
    KorBufferState blk2;
};

[[nodiscard]] BuilderState save_builder(const AbecsCmdBuilder* builder);
void restore_builder(AbecsCmdBuilder* builder, const BuilderState& state);

}  // namespace abecs

#endif
