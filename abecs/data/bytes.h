// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_BYTES_H
#define QUORVEL_ABECS_DATA_BYTES_H

#include <cstdint>

#include "core/raise.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/heap.h"

// What packets and parameters have in common: each owns one buffer, and its field functions are the codec's on it.
namespace abecs {

// Function(bytes, arguments...), or a zero result when there are no bytes (about which has then been raised).
template <auto Function, typename... Arguments>
auto apply(KorBuffer* bytes, Arguments... arguments) {
    using Result = decltype(Function(bytes, arguments...));
    if (bytes == nullptr) { return Result(); }
    return Function(bytes, arguments...);
}

template <typename Owner>
[[nodiscard]] Owner* new_owner(KorBuffer* Owner::*bytes, uint32_t capacity) {
    KorBuffer* buffer = kor_buffer_new(capacity);
    if (buffer == nullptr) { return nullptr; }
    // Nullable, because a raise from within the allocation would leave the buffer behind.
    auto* owner = static_cast<Owner*>(kor_heap_alloc(sizeof(Owner), 1));
    if (owner == nullptr) {
        kor_buffer_delete(&buffer);
        return kor::raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    *owner = Owner{};
    owner->*bytes = buffer;
    return owner;
}

template <typename Owner>
void delete_owner(Owner** variable, KorBuffer* Owner::*bytes) {
    if (variable == nullptr || *variable == nullptr) { return; }
    Owner* owner = *variable;
    *variable = nullptr;
    kor_buffer_delete(&(owner->*bytes));
    kor_heap_free(owner);
}

}  // namespace abecs

#endif
