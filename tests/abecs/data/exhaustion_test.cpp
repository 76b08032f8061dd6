// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/malloc/exhaustion.h"

#include <gtest/gtest.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/rsp_parser.h"
#include "quorvel/kor/heap.h"

namespace {

TEST(DataExhaustion, MakingAnObjectLeavesNothingBehind) {
    using support::allocations_of;
    using support::make;
    EXPECT_EQ(allocations_of(make<abecs_packet_new, abecs_packet_delete>), 3U);
    EXPECT_EQ(allocations_of(make<abecs_param_new, abecs_param_delete>), 3U);
    EXPECT_EQ(allocations_of(make<abecs_rsp_parser_new, abecs_rsp_parser_delete>), 1U);
    EXPECT_EQ(allocations_of(make<abecs_rsp_param_map_new, kor_map_delete>), 2U);
}

AbecsRspParamValue heap_byte(uint8_t byte) {
    const AbecsRspParamValue value{1, static_cast<uint8_t*>(kor_heap_alloc(1, 0)), false};
    *value.data = byte;
    return value;
}

// Eleven entries are put first, so that the twelfth makes the sixteen buckets grow. Id 1 is there already.
TEST(DataExhaustion, AFailedPutLeavesTheBytesToTheCaller) {
    for (const support::Raise raise : support::kBothRaises) {
        for (const uint16_t id : {uint16_t{1}, uint16_t{99}}) {
            AbecsRspParamMap* map = abecs_rsp_param_map_new();
            for (uint8_t each = 0; each < 11; ++each) {
                const AbecsRspParamValue old = heap_byte(each);
                abecs_rsp_param_map_put(map, each, &old, true);
            }
            const AbecsRspParamValue value = heap_byte('v');
            size_t n = 1;
            for (; support::fails(n, raise, [&] { abecs_rsp_param_map_put(map, id, &value, true); }); ++n) {
                EXPECT_EQ(*value.data, 'v');
                EXPECT_EQ(kor_map_size(map), 11U);
                EXPECT_EQ(*abecs_rsp_param_map_get(map, 1)->data, 1);
            }
            EXPECT_EQ(n, id == 1 ? 2U : 5U);
            EXPECT_EQ(abecs_rsp_param_map_get(map, id)->data, value.data);
            kor_map_delete(&map);
        }
    }
}

}  // namespace
