// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/builder.h"

#include <cstring>

#include "abecs/data/bytes.h"
#include "abecs/data/limits.h"
#include "abecs/data/packet.h"
#include "abecs/data/param.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

// Chosen for each parameter anew, so a small one can still fill up block 1 after a large one went to block 2.
KorBuffer* block_with_room(const AbecsCmdBuilder* builder, size_t size) {
    return kor_buffer_available_write(builder->blk1) >= size ? builder->blk1 : builder->blk2;
}

// An empty packet has room for both blocks.
void write_block(KorBuffer* block, AbecsPacket* out) {
    const size_t length = kor_buffer_available_read(block);
    abecs_packet_write_field_n(out, length, kLengthWidth);
    static_cast<void>(move_bytes(block, out->buffer, length));
}

}  // namespace

AbecsCmdBuilder* abecs_cmd_builder_new() { return new_owner<AbecsCmdBuilder>(); }

void abecs_cmd_builder_delete(AbecsCmdBuilder** builder) { delete_owner(builder); }

void abecs_cmd_builder_reset(AbecsCmdBuilder* builder) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    builder->cmdId[0] = '\0';
    kor_buffer_clear(builder->blk1);
    kor_buffer_clear(builder->blk2);
}

void abecs_cmd_builder_set_cmd_id(AbecsCmdBuilder* builder, const char* cmdId) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(cmdId, "'cmdId' is NULL")
        || refuse_if(kor_string_len(cmdId) != kIdWidth, "Invalid 'cmdId': %s", cmdId)) {
        return;
    }
    kor_string_copy(builder->cmdId, cmdId);
}

void abecs_cmd_builder_add_param(AbecsCmdBuilder* builder, AbecsParam* param) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(param, "'param' is NULL")) { return; }
    KorBuffer* block = block_with_room(builder, abecs_param_available_read(param) + kParamHead);
    KorBufferState before;
    kor_buffer_save_state(block, &before);
    bool added = false;
    attempt([&] { added = append_param(block, param); })
        .cleanup([&] {
            if (!added) { kor_buffer_set_state(block, &before); }
        })
        .run();
    if (added) { abecs_param_reset(param); }
}

AbecsPacket* abecs_cmd_builder_build(AbecsCmdBuilder* builder, AbecsPacket* out) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    if (kor_string_is_empty(builder->cmdId)) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "Builder does not have assigned a command id"), nullptr;
    }
    abecs_packet_clear(out);
    abecs_packet_write_field_a(out, builder->cmdId, kIdWidth, false);
    if (abecs_packet_available_read(out) != kIdWidth) { return nullptr; }  // the id is not fit to be sent
    if (kor_buffer_available_read(builder->blk1) != 0) {
        write_block(builder->blk1, out);
        if (kor_buffer_available_read(builder->blk2) != 0) { write_block(builder->blk2, out); }
    }
    builder->cmdId[0] = '\0';
    return out;
}

namespace abecs {

BuilderState save_builder(const AbecsCmdBuilder* builder) {
    BuilderState state{};
    if (builder != nullptr) {
        kor_buffer_save_state(builder->blk1, &state.blk1);
        kor_buffer_save_state(builder->blk2, &state.blk2);
    }
    return state;
}

void restore_builder(AbecsCmdBuilder* builder, const BuilderState& state) {
    if (builder == nullptr) { return; }
    kor_buffer_set_state(builder->blk1, &state.blk1);
    kor_buffer_set_state(builder->blk2, &state.blk2);
}

}  // namespace abecs
