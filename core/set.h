// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SET_H
#define QUORVEL_CORE_SET_H

#include <cstddef>
#include <optional>

#include "core/hash_table.h"
#include "quorvel/kor/set.h"

struct KorSetCell {
    void* key;
};

struct KorSet {
    uint32_t capacity;
    KorItemHashFn itemHashFn;
    KorItemEqualsFn itemEqualsFn;
    KorItemCpFn itemCpFn;
    KorItemDelFn itemDelFn;
    uint32_t size;
    KorSetCell** slots;
};

namespace kor {

template <typename Set>
using SetTable = HashTable<Set, &KorSet::itemHashFn, &KorSet::itemEqualsFn>;

using SetAddition = SetTable<KorSet>::Addition;

// A put in two steps, for those that have more than one to make or none: the first can fail and changes nothing, the
// second cannot fail. `item` is not in the set. None after a raise.
[[nodiscard]] std::optional<SetAddition> prepare_put(KorSet& set, const void* item);
void* put(KorSet& set, const SetAddition& addition);

// Instead of the second step.
void abandon_put(KorSet& set, const SetAddition& addition);

}  // namespace kor

#endif
