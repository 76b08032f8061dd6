// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_BUILDER_PRIVATE_H
#define QUORVEL_ABECS_CMD_BUILDER_PRIVATE_H

#include "quorvel/abecs/cmd/builder.h"
#include "quorvel/kor/buffer.h"

struct AbecsCmdBuilder {
    char cmdId[4];
    KorBuffer* blk1;
    KorBuffer* blk2;
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
