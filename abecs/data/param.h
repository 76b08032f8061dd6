// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_PARAM_H
#define QUORVEL_ABECS_DATA_PARAM_H

#include "abecs/data/bytes.h"
#include "quorvel/abecs/param.h"

namespace abecs {

// A block of parameters is announced by three digits, so no parameter can be longer.
constexpr uint32_t kParamCapacity = 999;

}  // namespace abecs

struct AbecsParam {
    uint16_t id = 0;
    kor::InlineBuffer<abecs::kParamCapacity> bytes;
    KorBuffer* data = &bytes.buffer;
};

namespace abecs {

// The id and the length in front of a parameter's data, two bytes each.
constexpr size_t kParamHead = 4;

// Null, with an error raised, for a null parameter.
[[nodiscard]] inline KorBuffer* bytes_of(const AbecsParam* param) {
    if (param == nullptr) { return kor::raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'param' is NULL"), nullptr; }
    return param->data;
}

// Appends id, length and data, consuming the data only when it fitted. False after a raise.
bool append_param(KorBuffer* buffer, AbecsParam* param);

// Moves `length` waiting bytes, all or (after a raise) none. False after a raise.
[[nodiscard]] bool move_bytes(KorBuffer* from, KorBuffer* to, size_t length);

}  // namespace abecs

#endif
