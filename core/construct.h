// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_CONSTRUCT_H
#define QUORVEL_CORE_CONSTRUCT_H

#include <new>

#include "core/attempt.h"
#include "quorvel/kor/heap.h"

namespace kor {

// Runs `complete`, and `discard` before what that raises goes on.
void complete_or_discard(Branch complete, Branch discard);

// A new object, zeroed and then completed by `complete`. What fails in there takes the object with it, through
// `discard`, and null is returned.
template <typename Object, typename Complete>
[[nodiscard]] Object* construct(void (*discard)(Object**), Complete&& complete) {
    void* place = kor_heap_alloc(sizeof(Object), 0);
    if (place == nullptr) { return nullptr; }
    auto* object = new (place) Object{};
    complete_or_discard([&] { complete(object); }, [&] { discard(&object); });
    return object;
}

}  // namespace kor

#endif
