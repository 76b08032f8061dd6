// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/buffer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <deque>
#include <tuple>

#include "quorvel/kor/endianness.h"
#include "tests/core/owned.h"
#include "tests/support/raised.h"

using namespace std::string_literals;

namespace {

using Buffer = Owned<KorBuffer, kor_buffer_delete>;
using Bytes = std::vector<uint8_t>;

void write(KorBuffer* buffer, const Bytes& bytes) {
    EXPECT_NO_RAISE(kor_buffer_write(buffer, bytes.data(), bytes.size()));
}

Bytes read(KorBuffer* buffer, size_t length) {
    Bytes bytes(length);
    bytes.resize(kor_buffer_read(buffer, bytes.data(), length));
    return bytes;
}

void expect_room(const KorBuffer* buffer, size_t toRead, size_t toWrite) {
    EXPECT_EQ(kor_buffer_available_read(buffer), toRead);
    EXPECT_EQ(kor_buffer_available_write(buffer), toWrite);
}

// Reads and writes of changing lengths, against a queue.
TEST(Buffer, GivesBackWhatWasWrittenInOrderAcrossTheWrap) {
    constexpr size_t kCapacity = 5;
    const Buffer buffer(kor_buffer_new(kCapacity));
    std::deque<uint8_t> model;
    uint8_t next = 0;
    for (size_t step = 0; step < 500; ++step) {
        const size_t in = std::min((step * 7 + step / 6) % (kCapacity + 1), kCapacity - model.size());
        Bytes bytes;
        for (size_t i = 0; i < in; ++i) { bytes.push_back(next++); }
        write(buffer, bytes);
        model.insert(model.end(), bytes.begin(), bytes.end());
        expect_room(buffer, model.size(), kCapacity - model.size());

        const size_t out = std::min((step * 5 + step / 11) % (kCapacity + 1), model.size());
        const Bytes expected(model.begin(), model.begin() + static_cast<std::ptrdiff_t>(out));
        model.erase(model.begin(), model.begin() + static_cast<std::ptrdiff_t>(out));
        ASSERT_EQ(read(buffer, out), expected) << "step " << step;
    }
}

TEST(Buffer, RefusesAWriteWithoutRoomForAllOfIt) {
    const Buffer buffer(kor_buffer_new(4));
    write(buffer, {1, 2, 3});
    const char* detail = "No enough space in buffer (available: 1, requested: 2)";
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, detail, kor_buffer_write_ui16(buffer, 1, 0));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, detail, kor_buffer_write_str(buffer, "x", true));
    EXPECT_EQ(read(buffer, 9), (Bytes{1, 2, 3}));
    EXPECT_NO_RAISE(kor_buffer_set_storage(buffer, nullptr, 0, true));
    EXPECT_EQ(kor_buffer_get_storage(buffer), nullptr);
    expect_room(buffer, 0, 0);
    EXPECT_EQ(kor_buffer_read(buffer, nullptr, 1), 0U);
}

TEST(Buffer, LentStorageIsWorkedOnInPlaceFullOrEmpty) {
    std::array<uint8_t, 8> storage{1, 2, 3, 4, 5, 6, 7, 8};
    const Buffer buffer(kor_buffer_new(3));
    write(buffer, {9, 9});
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "storage is NULL and sizeStorage != 0",
                  kor_buffer_set_storage(buffer, nullptr, 1, false));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "storage is not NULL but sizeStorage == 0",
                  kor_buffer_set_storage(buffer, storage.data(), 0, false));
    expect_room(buffer, 2, 1);
    EXPECT_NO_RAISE(kor_buffer_set_storage(buffer, storage.data(), 8, true));
    EXPECT_EQ(read(buffer, 99), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_NO_RAISE(kor_buffer_set_storage(buffer, storage.data(), 8, false));
    expect_room(buffer, 0, 8);
    EXPECT_EQ(kor_buffer_capacity(buffer), 8U);
    write(buffer, {0xAA});
    EXPECT_EQ(storage[0], 0xAA);
    EXPECT_EQ(kor_buffer_get_storage(buffer), storage.data());
}

TEST(Buffer, NumbersTravelInTheOrderAskedFor) {
    const Buffer buffer(kor_buffer_new(19));
    kor_buffer_write_byte(buffer, 0xFE);
    kor_buffer_write_ui16(buffer, 0x1234, 0);
    kor_buffer_write_ui16(buffer, 0x1234, 1);
    kor_buffer_write_i16(buffer, -2, -1);
    kor_buffer_write_ui32(buffer, 0xFE345678, 0);
    kor_buffer_write_ui32(buffer, 0xFE345678, 256);
    kor_buffer_write_i32(buffer, -2, 1);
    const Bytes bytes{0xFE, 0x12, 0x34, 0x34, 0x12, 0xFE, 0xFF, 0xFE, 0x34, 0x56,
                      0x78, 0x78, 0x56, 0x34, 0xFE, 0xFE, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(read(buffer, 19), bytes);
    write(buffer, bytes);
    EXPECT_EQ(kor_buffer_read_byte(buffer), 0xFE);
    EXPECT_EQ(kor_buffer_read_ui16(buffer, 0), 0x1234);
    EXPECT_EQ(kor_buffer_read_ui16(buffer, 1), 0x1234);
    EXPECT_EQ(kor_buffer_read_i16(buffer, 2), -2);
    EXPECT_EQ(kor_buffer_read_ui32(buffer, 0), 0xFE345678U);
    EXPECT_EQ(kor_buffer_read_ui32(buffer, 2), 0xFE345678U);
    EXPECT_EQ(kor_buffer_read_i32(buffer, 1), -2);
    EXPECT_EQ(kor_endianness_host(), std::endian::native == std::endian::big ? 0 : 1);
}

TEST(Buffer, ANumberThatIsNotAllThereStaysUnread) {
    const Buffer buffer(kor_buffer_new(4));
    write(buffer, {1, 2, 3});
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 3, requested: 4)",
                  kor_buffer_read_i32(buffer, 0));
    EXPECT_EQ(read(buffer, 4), (Bytes{1, 2, 3}));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)",
                  kor_buffer_read_byte(buffer));
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_buffer_read_byte(buffer), 0);
}

TEST(Buffer, ARestoredStateMakesTheSameBytesReadableAgain) {
    const Buffer buffer(kor_buffer_new(4));
    write(buffer, {0, 0, 1, 2});
    EXPECT_FALSE(kor_buffer_is_last_read(buffer));
    kor_buffer_read(buffer, nullptr, 2);
    EXPECT_TRUE(kor_buffer_is_last_read(buffer));
    write(buffer, {3, 4});
    KorBufferState state{};
    EXPECT_EQ(kor_buffer_save_state(buffer, &state), &state);
    EXPECT_EQ(read(buffer, 3), (Bytes{1, 2, 3}));
    kor_buffer_set_state(buffer, &state);
    expect_room(buffer, 4, 0);
    EXPECT_EQ(read(buffer, 3), (Bytes{1, 2, 3}));
    write(buffer, {9});
    kor_buffer_set_state(buffer, &state);
    EXPECT_EQ(read(buffer, 4), (Bytes{9, 2, 3, 4})) << "what was overwritten does not come back";
    kor_buffer_set_read_cursor_pos(buffer, 1);
    kor_buffer_set_write_cursor_pos(buffer, 1);
    kor_buffer_set_last_read(buffer, false);
    EXPECT_EQ(kor_buffer_clear(buffer), 4U);
    expect_room(buffer, 0, 4);
    EXPECT_EQ(kor_buffer_get_read_cursor_pos(buffer), 0U);
    EXPECT_EQ(kor_buffer_get_write_cursor_pos(buffer), 0U);
}

TEST(Buffer, ReadsTextsCutToTheDestinationUpToTheirTerminator) {
    // The text, the size of the destination, and its memory afterwards, "####" before.
    const std::tuple<std::string, size_t, std::string> cases[] = {
        {"", 4, "\0###"s},       {"abc", 4, "abc\0"s},  {"abcdef", 4, "abc\0"s},
        {"abcdef", 1, "\0###"s}, {"abcdef", 0, "####"},
    };
    for (const auto& [text, size, memory] : cases) {
        const Buffer buffer(kor_buffer_new(8));
        kor_buffer_write_str(buffer, text.c_str(), true);
        kor_buffer_write_byte(buffer, 0x7F);
        std::string destination = "####";
        EXPECT_EQ(kor_buffer_read_str(buffer, destination.data(), size), destination.data());
        EXPECT_EQ(destination, memory) << text << " into " << size;
        EXPECT_EQ(read(buffer, 9), Bytes{0x7F}) << text << " into " << size;
    }
    const Buffer buffer(kor_buffer_new(8));
    kor_buffer_write_str(buffer, "abcdef", false);
    char destination[4] = "###";
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Null-terminator not found", kor_buffer_read_str(buffer, destination, 4));
    EXPECT_STREQ(destination, "abc");
    expect_room(buffer, 0, 8);
}

}  // namespace
