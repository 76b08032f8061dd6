// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_ITEM_COPY_H
#define QUORVEL_CORE_ITEM_COPY_H

#include <optional>

#include "core/attempt.h"
#include "quorvel/kor/collection.h"

namespace kor {

// The copy that a container keeps of an item; none when making it failed and the raise returned. A null item is kept as
// null: copy functions need not know of it.
[[nodiscard]] inline std::optional<void*> item_copy(KorItemCpFn copyFn, const void* item) {
    void* copy = nullptr;
    if (item != nullptr && !completes([&] { copy = copyFn(item); }) && copy == nullptr) { return std::nullopt; }
    return copy;
}

inline void release(KorItemDelFn deleteFn, void* item) {
    if (item != nullptr) { deleteFn(item); }
}

}  // namespace kor

#endif
