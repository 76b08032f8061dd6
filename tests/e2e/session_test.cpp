// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <string>
#include <vector>

#include "tests/e2e/fixture.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int kSessionsEach = 10;
#else
constexpr int kSessionsEach = 60;
#endif

// Five of these make 300 sessions. Byte values that stand once in 256 keys or cryptograms come up among them.
class ManySessions : public EndToEnd, public testing::WithParamInterface<int> {};

TEST_P(ManySessions, AllOpenAndAnswer) {
    for (int i = 0; i < kSessionsEach; ++i) {
        ASSERT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK) << "session " << i;
        AbecsCmdGinOut out{};
        ASSERT_EQ(call(abecs_cmd_gin, 0, &out), ABECS_RSP_STAT_ST_OK) << "session " << i;
        EXPECT_STREQ(out.idx00.mnName, "QUORVEL");
    }
    EXPECT_EQ(call(abecs_cmd_clo, nullptr), ABECS_RSP_STAT_ST_OK);
    retire();
}

INSTANTIATE_TEST_SUITE_P(OfThreeHundred, ManySessions, testing::Range(0, 5));

class Session : public EndToEnd {
protected:
    void expect_answers() {
        AbecsCmdGinOut out{};
        EXPECT_EQ(call(abecs_cmd_gin, 3, &out), ABECS_RSP_STAT_ST_OK);
        AbecsRspParamMap* items = abecs_rsp_param_map_new();
        const std::vector<int32_t> ids{ABECS_CMD_GIX_ID_PP_SERNUM, ABECS_CMD_GIX_ID_PP_BIGRAND};
        EXPECT_EQ(call(abecs_cmd_gix, ids.data(), ids.size(), items), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(kor_map_size(items), 2U);
        kor_map_delete(&items);
    }
};

TEST_F(Session, QueriesAreAnsweredInAndOutOfEachKind) {
    expect_answers();
    EXPECT_EQ(call(abecs_cmd_opn, false), ABECS_RSP_STAT_ST_OK);
    expect_answers();
    EXPECT_EQ(call(abecs_cmd_clo, "PLAIN"), ABECS_RSP_STAT_ST_OK);
    for (const bool extended : {false, true}) {
        EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK);
        expect_answers();
        const int32_t closed = extended ? call(abecs_cmd_clx, "BYE", nullptr) : call(abecs_cmd_clo, "BYE");
        EXPECT_EQ(closed, ABECS_RSP_STAT_ST_OK);
        expect_answers();
    }
    retire();
}

}  // namespace
