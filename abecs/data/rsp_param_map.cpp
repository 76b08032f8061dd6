// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_param_map.h"

#include <array>
#include <cstring>
#include <numeric>

#include "abecs/data/flag.h"
#include "core/check.h"
#include "quorvel/kor/heap.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr uint32_t kInitialBuckets = 16;

// The map is an ordinary one too, whose own functions may be asked for a null key or handed a null value.
uint32_t hash_id(const void* key) { return key != nullptr ? *static_cast<const uint16_t*>(key) : 0U; }

bool equal_ids(const void* lhs, const void* rhs) { return kor_collection_equals(lhs, rhs, sizeof(uint16_t)); }

// The ids that PIN pads use are not copied: one constant of each serves all maps.
constexpr uint16_t kFirstId = 0x8000;
constexpr auto kIds = [] {
    std::array<uint16_t, 128> ids{};
    std::iota(ids.begin(), ids.end(), kFirstId);
    return ids;
}();

const uint16_t* constant_of(uint16_t id) {
    const auto place = static_cast<size_t>(id - kFirstId);
    return place < kIds.size() ? &kIds[place] : nullptr;
}

void* copy_id(const void* key) {
    const uint16_t* constant = key != nullptr ? constant_of(*static_cast<const uint16_t*>(key)) : nullptr;
    return constant != nullptr ? const_cast<uint16_t*>(constant) : kor_collection_copy(key, sizeof(uint16_t));
}

void delete_id(void* key) {
    if (key != nullptr && key != constant_of(*static_cast<uint16_t*>(key))) { kor_collection_destroy(key); }
}

void* copy_value(const void* value) { return kor_collection_copy(value, sizeof(AbecsRspParamValue)); }

// What answers bring is card data, and must not stay behind in freed memory.
void delete_value(void* item) {
    auto* value = static_cast<AbecsRspParamValue*>(item);
    if (value->owned && value->data != nullptr) {
        explicit_bzero(value->data, value->size);
        kor_heap_free(value->data);
    }
    kor_heap_free(value);
}

AbecsRspParamMapIt* show(AbecsRspParamMapIt* out, const KorMapIterator& at) {
    out->map = at.map;
    out->id = static_cast<uint16_t>(hash_id(at.key));
    out->value = at.value != nullptr ? *static_cast<AbecsRspParamValue*>(at.value) : AbecsRspParamValue{};
    return out;
}

}  // namespace

AbecsRspParamMap* abecs_rsp_param_map_new() {
    return kor_map_new(kInitialBuckets, hash_id, equal_ids, copy_id, copy_value, delete_id, delete_value);
}

AbecsRspParamValue* abecs_rsp_param_map_put(AbecsRspParamMap* map, uint16_t id, const AbecsRspParamValue* value,
                                            bool owned) {
    if (refuse_null(map, "'map' is NULL")) { return nullptr; }
    // Not owned until it is in: whatever a failing put releases, the bytes stay the caller's.
    AbecsRspParamValue record = value != nullptr ? *value : AbecsRspParamValue{};
    record.owned = false;
    if (refuse_if((record.data != nullptr) != (record.size != 0), "invalid 'data' x 'szData'")) { return nullptr; }
    auto* stored = static_cast<AbecsRspParamValue*>(kor_map_get(map, &id));
    if (stored != nullptr && stored->data == record.data) {
        // Replacing the entry would free the very bytes that are being put.
        stored->size = record.size;
    } else {
        stored = static_cast<AbecsRspParamValue*>(kor_map_put(map, &id, &record));
    }
    if (stored != nullptr) { stored->owned = is_set(owned); }
    return stored;
}

AbecsRspParamValue* abecs_rsp_param_map_get(const AbecsRspParamMap* map, uint16_t id) {
    if (refuse_null(map, "'map' is NULL")) { return nullptr; }
    return static_cast<AbecsRspParamValue*>(kor_map_get(map, &id));
}

AbecsRspParamMapIt* abecs_rsp_param_map_begin(const AbecsRspParamMap* map, AbecsRspParamMapIt* out) {
    if (refuse_null(map, "'map' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    KorMapIterator at{};
    return kor_map_begin(map, &at) != nullptr ? show(out, at) : nullptr;
}

AbecsRspParamMapIt* abecs_rsp_param_map_next(AbecsRspParamMapIt* it) {
    if (refuse_null(it, "'it' is NULL")) { return nullptr; }
    // By the iterator's own copy of the id: the stored key may have gone with a cleared map.
    KorMapIterator at{it->map, &it->id, nullptr};
    return kor_map_next(&at) != nullptr ? show(it, at) : nullptr;
}
