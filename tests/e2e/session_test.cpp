// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/e2e/fixture.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int kSessionsEach = 10;
#else
constexpr int kSessionsEach = 60;
#endif

// Five of these make 300 sessions. Byte values that stand once in 256 keys or cryptograms come up among them.
class Sessions : public EndToEnd, public testing::WithParamInterface<int> {};

TEST_P(Sessions, AllOpenAndAnswerAndAreLeftForPlainCommands) {
    const int32_t id = ABECS_CMD_GIX_ID_PP_BIGRAND;
    AbecsCmdGinOut out{};
    for (int i = 0; i < kSessionsEach; ++i) {
        ASSERT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK) << "session " << i;
        ASSERT_EQ(call(abecs_cmd_gin, 0, &out), ABECS_RSP_STAT_ST_OK) << "session " << i;
        EXPECT_STREQ(out.idx00.mnName, "QUORVEL");
    }
    for (const bool extended : {false, true}) {
        EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(extended ? call(abecs_cmd_clx, "BYE", nullptr) : call(abecs_cmd_clo, "BYE"), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(call(abecs_cmd_gix, &id, 1, items_), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(kor_map_size(items_), 1U);
    }
}

INSTANTIATE_TEST_SUITE_P(OfThreeHundred, Sessions, testing::Range(0, 5));

}  // namespace
