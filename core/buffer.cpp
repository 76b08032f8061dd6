// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/buffer.h"

#include <algorithm>
#include <cstring>

#include "core/byte_order.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

namespace {

void rewind(KorBuffer& buffer, bool lastRead) {
    buffer.writeCursor = 0;
    buffer.readCursor = 0;
    buffer.lastRead = lastRead;
}

void advance(uint32_t& cursor, size_t count, uint32_t capacity) {
    cursor = static_cast<uint32_t>((cursor + count) % capacity);
}

// False, after a raise, unless all the bytes of an `Integer` wait; only then are they taken.
template <typename Integer>
bool take(KorBuffer* buffer, Integer& out) {
    if (refuse_null(buffer, "buffer is NULL")) { return false; }
    const size_t available = readable(*buffer);
    if (available < sizeof out) {
        return raise(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: %d, requested: %d)",
                     static_cast<int>(available), static_cast<int>(sizeof out)),
               false;
    }
    kor_buffer_read(buffer, &out, sizeof out);
    return true;
}

// Packets are built on buffers: card data and PIN block inputs must not stay behind in freed memory.
void release_storage(const KorBuffer& buffer) {
    if (!buffer.ownsStorage) { return; }
    if (buffer.storage != nullptr) { explicit_bzero(buffer.storage, buffer.capacity); }
    kor_heap_free(buffer.storage);
}

}  // namespace

size_t kor::readable(const KorBuffer& buffer) {
    if (buffer.writeCursor > buffer.readCursor) { return buffer.writeCursor - buffer.readCursor; }
    if (buffer.writeCursor < buffer.readCursor) { return buffer.capacity - buffer.readCursor + buffer.writeCursor; }
    return buffer.lastRead ? 0 : buffer.capacity;
}

size_t kor::writable(const KorBuffer& buffer) {
    if (buffer.writeCursor > buffer.readCursor) { return buffer.capacity - buffer.writeCursor + buffer.readCursor; }
    if (buffer.writeCursor < buffer.readCursor) { return buffer.readCursor - buffer.writeCursor; }
    return buffer.lastRead ? buffer.capacity : 0;
}

KorBuffer* kor_buffer_new(uint32_t capacity) {
    auto* buffer = static_cast<KorBuffer*>(kor_heap_alloc(sizeof(KorBuffer), 0));
    if (buffer == nullptr) { return nullptr; }
    uint8_t* storage = nullptr;
    if (capacity != 0) {
        storage = static_cast<uint8_t*>(kor_heap_alloc(capacity, 1));
        if (storage == nullptr) {
            kor_heap_free(buffer);
            return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
        }
    }
    *buffer = {storage, true, capacity, 0, 0, true};
    return buffer;
}

void kor_buffer_delete(KorBuffer** buffer) {
    if (buffer == nullptr || *buffer == nullptr) { return; }
    release_storage(**buffer);
    kor_heap_free(*buffer);
    *buffer = nullptr;
}

void kor_buffer_set_storage(KorBuffer* buffer, void* storage, uint32_t sizeStorage, bool full) {
    if (refuse_null(buffer, "buffer is NULL")
        || refuse_missing(storage, sizeStorage, "storage is NULL and sizeStorage != 0")
        || refuse_if(storage != nullptr && sizeStorage == 0, "storage is not NULL but sizeStorage == 0")) {
        return;
    }
    release_storage(*buffer);
    buffer->storage = static_cast<uint8_t*>(storage);
    buffer->ownsStorage = false;
    buffer->capacity = sizeStorage;
    rewind(*buffer, !full);
}

uint8_t* kor_buffer_get_storage(const KorBuffer* buffer) {
    if (refuse_null(buffer, "buffer is NULL")) { return nullptr; }
    return buffer->storage;
}

uint32_t kor_buffer_capacity(const KorBuffer* buffer) {
    if (refuse_null(buffer, "buffer is NULL")) { return 0; }
    return buffer->capacity;
}

size_t kor_buffer_clear(KorBuffer* buffer) {
    if (refuse_null(buffer, "buffer is NULL")) { return 0; }
    const size_t waiting = readable(*buffer);
    rewind(*buffer, true);
    return waiting;
}

size_t kor_buffer_available_read(const KorBuffer* buffer) {
    if (refuse_null(buffer, "buffer is NULL")) { return 0; }
    return readable(*buffer);
}

size_t kor_buffer_available_write(const KorBuffer* buffer) {
    if (refuse_null(buffer, "buffer is NULL")) { return 0; }
    return writable(*buffer);
}

uint32_t kor_buffer_get_read_cursor_pos(const KorBuffer* buffer) { return buffer->readCursor; }

void kor_buffer_set_read_cursor_pos(KorBuffer* buffer, uint32_t pos) { buffer->readCursor = pos; }

uint32_t kor_buffer_get_write_cursor_pos(const KorBuffer* buffer) { return buffer->writeCursor; }

void kor_buffer_set_write_cursor_pos(KorBuffer* buffer, uint32_t pos) { buffer->writeCursor = pos; }

bool kor_buffer_is_last_read(const KorBuffer* buffer) { return buffer->lastRead; }

void kor_buffer_set_last_read(KorBuffer* buffer, bool lastRead) { buffer->lastRead = lastRead; }

KorBufferState* kor_buffer_save_state(const KorBuffer* buffer, KorBufferState* out) {
    *out = {buffer->writeCursor, buffer->readCursor, buffer->lastRead};
    return out;
}

void kor_buffer_set_state(KorBuffer* buffer, const KorBufferState* state) {
    buffer->writeCursor = state->writeCursor;
    buffer->readCursor = state->readCursor;
    buffer->lastRead = state->lastRead;
}

size_t kor_buffer_read(KorBuffer* buffer, void* destination, size_t length) {
    if (refuse_null(buffer, "buffer is NULL")) { return 0; }
    const size_t count = std::min(length, readable(*buffer));
    if (count == 0) { return 0; }  // setting lastRead here would turn a full buffer into an empty one
    const size_t untilEnd = std::min<size_t>(count, buffer->capacity - buffer->readCursor);
    if (auto* out = static_cast<uint8_t*>(destination); out != nullptr) {
        std::memmove(out, buffer->storage + buffer->readCursor, untilEnd);
        std::memmove(out + untilEnd, buffer->storage, count - untilEnd);
    }
    advance(buffer->readCursor, count, buffer->capacity);
    buffer->lastRead = true;
    return count;
}

uint8_t kor_buffer_read_byte(KorBuffer* buffer) {
    uint8_t byte = 0;
    take(buffer, byte);
    return byte;
}

uint16_t kor_buffer_read_ui16(KorBuffer* buffer, int32_t byteOrder) {
    uint16_t value = 0;
    return take(buffer, value) ? ordered(value, byteOrder) : uint16_t{0};
}

int16_t kor_buffer_read_i16(KorBuffer* buffer, int32_t byteOrder) {
    return static_cast<int16_t>(kor_buffer_read_ui16(buffer, byteOrder));
}

uint32_t kor_buffer_read_ui32(KorBuffer* buffer, int32_t byteOrder) {
    uint32_t value = 0;
    return take(buffer, value) ? ordered(value, byteOrder) : uint32_t{0};
}

int32_t kor_buffer_read_i32(KorBuffer* buffer, int32_t byteOrder) {
    return static_cast<int32_t>(kor_buffer_read_ui32(buffer, byteOrder));
}

char* kor_buffer_read_str(KorBuffer* buffer, char* destination, size_t size) {
    if (refuse_null(buffer, "buffer is NULL")) { return nullptr; }
    size_t position = 0;
    char character = '\0';
    while (kor_buffer_read(buffer, &character, 1) != 0) {
        if (position < size) { destination[position] = character; }
        if (character == '\0') { return destination; }
        if (position + 1 < size) { ++position; }
    }
    // Terminated all the same, for a caller that goes on after the raise.
    if (size != 0) { destination[position] = '\0'; }
    return raise(KOR_RESULT_IO_ERROR, "Null-terminator not found"), nullptr;
}

void kor_buffer_write(KorBuffer* buffer, const void* bytes, size_t length) {
    if (refuse_null(buffer, "buffer is NULL")) { return; }
    if (length == 0) { return; }  // clearing lastRead here would turn an empty buffer into a full one
    const size_t available = writable(*buffer);
    if (length > available) {
        return raise(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: %zu, requested: %zu)", available,
                     length);
    }
    const auto* in = static_cast<const uint8_t*>(bytes);
    const size_t untilEnd = std::min<size_t>(length, buffer->capacity - buffer->writeCursor);
    std::memmove(buffer->storage + buffer->writeCursor, in, untilEnd);
    std::memmove(buffer->storage, in + untilEnd, length - untilEnd);
    advance(buffer->writeCursor, length, buffer->capacity);
    buffer->lastRead = false;
}

void kor_buffer_write_byte(KorBuffer* buffer, uint8_t byte) { kor_buffer_write(buffer, &byte, sizeof byte); }

void kor_buffer_write_ui16(KorBuffer* buffer, uint16_t value, int32_t byteOrder) {
    write_ordered<kor_buffer_write>(buffer, value, byteOrder);
}

void kor_buffer_write_i16(KorBuffer* buffer, int16_t value, int32_t byteOrder) {
    kor_buffer_write_ui16(buffer, static_cast<uint16_t>(value), byteOrder);
}

void kor_buffer_write_ui32(KorBuffer* buffer, uint32_t value, int32_t byteOrder) {
    write_ordered<kor_buffer_write>(buffer, value, byteOrder);
}

void kor_buffer_write_i32(KorBuffer* buffer, int32_t value, int32_t byteOrder) {
    kor_buffer_write_ui32(buffer, static_cast<uint32_t>(value), byteOrder);
}

// One write, so that a text whose terminator has no room leaves nothing behind.
void kor_buffer_write_str(KorBuffer* buffer, const char* text, bool withTerminator) {
    const size_t length = buffer != nullptr ? std::strlen(text) : 0;
    kor_buffer_write(buffer, text, length + (withTerminator ? 1 : 0));
}
