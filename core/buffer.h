// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_BUFFER_H
#define QUORVEL_CORE_BUFFER_H

#include <array>
#include <cstdint>

#include "quorvel/kor/buffer.h"

struct KorBuffer {
    uint8_t* storage;
    bool ownsStorage;
    uint32_t capacity;
    uint32_t writeCursor;
    uint32_t readCursor;
    bool lastRead;  // tells empty from full where the cursors are equal
};

namespace kor {

// How many bytes wait to be read, and for how many there is room.
[[nodiscard]] size_t readable(const KorBuffer& buffer);
[[nodiscard]] size_t writable(const KorBuffer& buffer);

// A buffer with its storage in it, as a member of what is allocated whole. It stays where it is made.
template <uint32_t kCapacity>
struct InlineBuffer {
    std::array<uint8_t, kCapacity> storage;
    KorBuffer buffer{storage.data(), false, kCapacity, 0, 0, true};

    InlineBuffer() = default;
    InlineBuffer(const InlineBuffer&) = delete;
    InlineBuffer& operator=(const InlineBuffer&) = delete;
};

}  // namespace kor

#endif
