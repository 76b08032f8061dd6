// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/rsp_parser.h"
#include "quorvel/kor/heap.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

enum class Raise { kCaught, kReturns };

class DataExhaustion : public testing::TestWithParam<Raise> {
protected:
    // The frames' own memory is not the matter here: make them first.
    void SetUp() override {
        support::raised_by([] { support::raised_by([] {}); });
    }

    // Runs `act` with its n-th allocation failing; false once it gets by without.
    template <typename Act>
    static bool fails(size_t n, Act act) {
        const support::FailingMalloc failing(n);
        support::Raised raised;
        if (GetParam() == Raise::kCaught) {
            raised = support::raised_by(act);
        } else {
            const support::ReturningRaises raises;
            act();
            EXPECT_LE(raises.all().size(), 1U) << "allocation " << n;
            if (!raises.all().empty()) { raised = raises.all().front(); }
        }
        if (!failing.failed()) {
            EXPECT_EQ(raised, support::Raised{});
            return false;
        }
        EXPECT_EQ(raised, support::error(KOR_RESULT_MALLOC_ERROR, "")) << "allocation " << n;
        EXPECT_EQ(failing.kept(), 0U) << "allocation " << n;
        return true;
    }
};

INSTANTIATE_TEST_SUITE_P(Raise, DataExhaustion, testing::Values(Raise::kCaught, Raise::kReturns));

template <auto kNew, auto kDelete>
void make() {
    auto* made = kNew();
    kDelete(&made);
}

TEST_P(DataExhaustion, MakingAnObjectLeavesNothingBehind) {
    void (*const makers[])(){
        make<abecs_packet_new, abecs_packet_delete>,
        make<abecs_param_new, abecs_param_delete>,
        make<abecs_rsp_parser_new, abecs_rsp_parser_delete>,
        make<abecs_rsp_param_map_new, kor_map_delete>,
    };
    for (const auto maker : makers) {
        size_t n = 1;
        while (fails(n, maker)) { ++n; }
        EXPECT_GT(n, 1U);
    }
}

// Eleven entries are put first, so that the twelfth makes the sixteen buckets grow.
TEST_P(DataExhaustion, AFailedPutLeavesTheBytesToTheCaller) {
    for (const uint16_t id : {uint16_t{1}, uint16_t{99}}) {
        AbecsRspParamMap* map = abecs_rsp_param_map_new();
        for (uint16_t each = 0; each < 11; ++each) {
            const AbecsRspParamValue old{1, static_cast<uint8_t*>(kor_heap_alloc(1, 0)), false};
            *old.data = static_cast<uint8_t>(each);
            abecs_rsp_param_map_put(map, each, &old, true);
        }
        const AbecsRspParamValue value{1, static_cast<uint8_t*>(kor_heap_alloc(1, 0)), false};
        *value.data = 'v';
        size_t n = 1;
        while (fails(n, [&] { abecs_rsp_param_map_put(map, id, &value, true); })) {
            ++n;
            EXPECT_EQ(*value.data, 'v');
            EXPECT_EQ(kor_map_size(map), 11U);
            EXPECT_EQ(*abecs_rsp_param_map_get(map, 1)->data, 1);
        }
        EXPECT_GT(n, 1U);
        EXPECT_EQ(abecs_rsp_param_map_get(map, id)->data, value.data);
        kor_map_delete(&map);
    }
}

}  // namespace
