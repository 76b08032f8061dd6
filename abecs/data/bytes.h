// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_BYTES_H
#define QUORVEL_ABECS_DATA_BYTES_H

#include <cstring>
#include <new>

#include "core/buffer.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

// What packets and parameters have in common: each holds one buffer, and its field functions are the codec's on it.
namespace abecs {

// Function(bytes, arguments...), or a zero result when there are no bytes (about which has then been raised).
template <auto Function, typename... Arguments>
auto apply(KorBuffer* bytes, Arguments... arguments) {
    using Result = decltype(Function(bytes, arguments...));
    if (bytes == nullptr) { return Result(); }
    return Function(bytes, arguments...);
}

// An owner in one allocation, its buffer's storage included, which is not initialised.
template <typename Owner>
[[nodiscard]] Owner* new_owner() {
    void* place = kor_heap_alloc(sizeof(Owner), 0);
    return place != nullptr ? new (place) Owner : nullptr;
}

// Card data and PIN block inputs must not stay behind in freed memory.
template <typename Owner>
void delete_owner(Owner** variable) {
    if (variable == nullptr || *variable == nullptr) { return; }
    explicit_bzero(*variable, sizeof(Owner));
    kor_heap_free(*variable);
    *variable = nullptr;
}

}  // namespace abecs

#endif
