// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_param_map.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>

#include "quorvel/kor/heap.h"
#include "tests/support/raised.h"

namespace {

using namespace support;

// What is not freed here is found by the leak check, what is freed twice by the address check.
AbecsRspParamValue heap_value(std::string_view text) {
    auto* data = static_cast<uint8_t*>(kor_heap_alloc(text.size(), 0));
    std::memcpy(data, text.data(), text.size());
    return {static_cast<uint32_t>(text.size()), data, false};
}

std::string text_of(const AbecsRspParamValue& value) { return {value.data, value.data + value.size}; }

class RspParamMap : public testing::Test {
protected:
    ~RspParamMap() override { kor_map_delete(&map_); }

    AbecsRspParamMap* map_ = abecs_rsp_param_map_new();
};

TEST_F(RspParamMap, StoresTheRecordUnderItsId) {
    EXPECT_EQ(abecs_rsp_param_map_get(map_, 0x8001), nullptr);
    const AbecsRspParamValue value = heap_value("serial");
    AbecsRspParamValue* stored = abecs_rsp_param_map_put(map_, 0x8001, &value, true);
    EXPECT_NE(stored, &value);
    EXPECT_EQ(stored, abecs_rsp_param_map_get(map_, 0x8001));
    EXPECT_EQ(stored->data, value.data) << "the bytes are adopted, not copied";
    EXPECT_EQ(text_of(*stored), "serial");
    EXPECT_TRUE(stored->owned) << "the argument counts, not the record's flag";
}

TEST_F(RspParamMap, OwnedBytesGoWithTheirEntry) {
    const AbecsRspParamValue first = heap_value("first");
    const AbecsRspParamValue second = heap_value("second");
    abecs_rsp_param_map_put(map_, 1, &first, true);
    abecs_rsp_param_map_put(map_, 1, &second, true);
    EXPECT_EQ(kor_map_size(map_), 1U);
    EXPECT_EQ(text_of(*abecs_rsp_param_map_get(map_, 1)), "second");
    // As a caller's own declaration may have it, in a language that has no bool.
    using Foreign = AbecsRspParamValue* (*)(AbecsRspParamMap*, uint16_t, const AbecsRspParamValue*, int);
    const auto put = reinterpret_cast<Foreign>(reinterpret_cast<void (*)()>(abecs_rsp_param_map_put));
    const AbecsRspParamValue third = heap_value("third");
    EXPECT_EQ(text_of(*put(map_, 1, &third, 2)), "third");
}

TEST_F(RspParamMap, OthersBytesStayTheirs) {
    uint8_t bytes[]{'a', 'b'};
    const AbecsRspParamValue value{2, bytes, true};
    abecs_rsp_param_map_put(map_, 1, &value, false);
    EXPECT_FALSE(abecs_rsp_param_map_get(map_, 1)->owned);
    abecs_rsp_param_map_put(map_, 1, nullptr, true);
    EXPECT_EQ(abecs_rsp_param_map_get(map_, 1)->data, nullptr);
    EXPECT_EQ(abecs_rsp_param_map_get(map_, 1)->size, 0U);
    EXPECT_EQ(bytes[0], 'a');
}

TEST_F(RspParamMap, PuttingTheStoredBytesAgainKeepsThem) {
    const AbecsRspParamValue value = heap_value("twice");
    AbecsRspParamValue* stored = abecs_rsp_param_map_put(map_, 1, &value, true);
    EXPECT_EQ(abecs_rsp_param_map_put(map_, 1, stored, true), stored);
    EXPECT_EQ(text_of(*stored), "twice");
    AbecsRspParamValue shorter = value;
    shorter.size = 3;
    EXPECT_EQ(text_of(*abecs_rsp_param_map_put(map_, 1, &shorter, true)), "twi");
}

TEST_F(RspParamMap, ARefusedValueStaysTheCallers) {
    AbecsRspParamValue value = heap_value("mine");
    const AbecsRspParamValue noSize{0, value.data, false};
    const AbecsRspParamValue noData{4, nullptr, false};
    const char* mismatch = "invalid 'data' x 'szData'";
    EXPECT_RAISES(kArgument, mismatch, abecs_rsp_param_map_put(map_, 1, &noSize, true));
    EXPECT_RAISES(kArgument, mismatch, abecs_rsp_param_map_put(map_, 1, &noData, true));
    EXPECT_EQ(kor_map_size(map_), 0U);
    EXPECT_EQ(text_of(value), "mine");
    kor_heap_free(value.data);
}

TEST_F(RspParamMap, IterationMeetsEveryEntryOnce) {
    AbecsRspParamMapIt it{nullptr, 77, {}};
    EXPECT_EQ(abecs_rsp_param_map_begin(map_, &it), nullptr);
    EXPECT_EQ(it.id, 77) << "untouched for an empty map";
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_rsp_param_map_begin(map_, nullptr));
    EXPECT_RAISES(kArgument, "'it->map' is NULL", abecs_rsp_param_map_next(&it));
    std::map<uint16_t, std::string> put;
    for (const uint16_t id : std::initializer_list<uint16_t>{0x8000, 0x8010, 0x8020}) {  // which collide
        put[id] = "value " + std::to_string(id);
        const AbecsRspParamValue value = heap_value(put[id]);
        abecs_rsp_param_map_put(map_, id, &value, true);
    }
    std::map<uint16_t, std::string> met;
    for (auto* at = abecs_rsp_param_map_begin(map_, &it); at != nullptr; at = abecs_rsp_param_map_next(at)) {
        EXPECT_EQ(at, &it);
        EXPECT_TRUE(met.emplace(it.id, text_of(it.value)).second);
    }
    EXPECT_EQ(met, put);
    EXPECT_EQ(abecs_rsp_param_map_next(&it), nullptr) << "the end stays the end";
    kor_map_clear(map_);
    EXPECT_RAISES(kArgument, "'it->key' not present in 'it->map'", abecs_rsp_param_map_next(&it));
}

}  // namespace
