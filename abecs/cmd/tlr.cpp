// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tlr.h"

#include <optional>

#include "abecs/cmd/exchange.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_set.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kTlr{.id = "TLR", .unexpectedId = UnexpectedId::kTable};
constexpr size_t kMaxData = 999;  // what a three-digit length can say
constexpr size_t kCountWidth = 2;
constexpr size_t kMaxText = kMaxData - kCountWidth;
constexpr size_t kMaxRecords = 99;
constexpr uint32_t kKeyCapacity = 132;  // 99 keys fit without the set having to grow

struct Head {
    size_t length;
    int table;
    int acquirer;
    char index[3];
};
constexpr size_t kHeadLength = 3 + 1 + 2 + 2;

struct Batch {
    size_t count = 0;
    std::optional<Head> duplicate;
};

Head read_head(KorBuffer* text) {
    Head head{};
    head.length = static_cast<size_t>(abecs_data_read_field_n(text, 3));
    head.table = static_cast<int>(abecs_data_read_field_n(text, 1));
    head.acquirer = static_cast<int>(abecs_data_read_field_n(text, 2));
    abecs_data_read_field_a(text, head.index, sizeof head.index, 2, false);
    return head;
}

// False when the key is there already.
bool put_key(KorSet* keys, const Head& head) {
    char key[6];
    kor_string_format(key, sizeof key, "%d%02d%s", head.table, head.acquirer, head.index);
    return kor_string_set_put(keys, key) != nullptr;
}

// To the end of the text or the first duplicate.
void walk(KorBuffer* text, KorSet* keys, Batch& batch) {
    while (kor_buffer_available_read(text) != 0) {
        const Head head = read_head(text);
        // A length shorter than the head wraps around to more than any text holds, which the reader refuses.
        abecs_data_read_field_b(text, nullptr, 0, head.length - kHeadLength);
        if (!put_key(keys, head)) {
            batch.duplicate = head;
            return;
        }
        ++batch.count;
    }
}

void check_batch(const Batch& batch) {
    if (const auto& key = batch.duplicate) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Duplicate key (TAB_ID: %d, TAB_ACQ: %02d, TAB_RECIDX: %s)",
                     key->table, key->acquirer, key->index);
    }
    if (batch.count > kMaxRecords) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Too many records (maximum: %zu, requested: %zu)", kMaxRecords, batch.count);
    }
}

// Reads the caller's text where it is; nothing writes through the buffer.
KorBuffer* view(const char* records, size_t length) {
    KorBuffer* text = kor_buffer_new(0);
    if (length != 0) { kor_buffer_set_storage(text, const_cast<char*>(records), static_cast<uint32_t>(length), true); }
    return text;
}

// How many records there are; none after an error was raised.
std::optional<size_t> parse_records(const char* records, size_t length) {
    KorSet* keys = nullptr;
    KorBuffer* text = nullptr;
    Batch batch;
    bool good = false;
    attempt([&] {
        keys = kor_string_set_new(kKeyCapacity);
        text = view(records, length);
        attempt([&] { walk(text, keys, batch); })
            // No fault of the records.
            .on(KOR_RESULT_MALLOC_ERROR,
                [&] { kor_exception_throw(KOR_RESULT_MALLOC_ERROR, kor_exception_get_message()); })
            .on_any([&] {
                // The cause brings its own "[NAME] "; applications know this text without one in front.
                kor_exception_fthrow(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid record (caused by %s)",
                                     kor_exception_get_message());
            })
            .run();
        check_batch(batch);
        good = true;
    })
        .cleanup([&] {
            kor_buffer_delete(&text);
            kor_set_delete(&keys);
        })
        .run();
    return good ? std::optional(batch.count) : std::nullopt;
}

}  // namespace

int32_t abecs_cmd_tlr(AbecsComm* pinpad, const char* records) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(records, "'records' is NULL")) { return kRaised; }
    const size_t length = kor_string_len(records);
    if (refuse_if(length > kMaxText, "'records' is too big (maximum: %d, requested: %d)", static_cast<int>(kMaxText),
                  static_cast<int>(length))) {
        return kRaised;
    }
    const std::optional<size_t> count = parse_records(records, length);
    if (!count) { return kRaised; }
    return call(pinpad, kTlr, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, kCountWidth + length, 3);
                    abecs_packet_write_field_n(packet, *count, kCountWidth);
                    abecs_packet_write_field_b(packet, records, length);
                }),
                Response::status());
}
