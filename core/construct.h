// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_CONSTRUCT_H
#define QUORVEL_CORE_CONSTRUCT_H

#include "core/attempt.h"
#include "quorvel/kor/heap.h"

namespace kor {

// A new object, zeroed and then completed by `complete`. What fails in there takes the object with it, through
// `discard`, and null is returned.
template <typename Object, typename Complete>
[[nodiscard]] Object* construct(void (*discard)(Object**), Complete&& complete) {
    auto* object = static_cast<Object*>(kor_heap_alloc(sizeof(Object), 0));
    if (object == nullptr) { return nullptr; }
    *object = Object{};
    bool done = false;
    attempt([&] {
        complete(object);
        done = true;
    })
        .cleanup([&] {
            if (!done) { discard(&object); }
        })
        .run();
    return object;
}

}  // namespace kor

#endif
