// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <string>
#include <vector>

#include "tests/e2e/fixture.h"

namespace {

class TableLoad : public EndToEnd {};

TEST_F(TableLoad, TakesAsManyBatchesAsItNeeds) {
    quorvel::sim::Tables::Records due;
    std::vector<std::string> batches(1);
    for (int i = 0; i < 250; ++i) {
        const std::string index = fmt::format("{:02}", i % 100);
        const std::string body(static_cast<size_t>(i), static_cast<char>('!' + i % 90));
        const std::string record = fmt::format("{:03}{}05{}{}", 8 + body.size(), 1 + i / 100, index, body);
        due[{1 + i / 100, 5, index}] = quorvel::sim::to_bytes(body);
        if (batches.back().size() + record.size() > 997) batches.emplace_back();
        batches.back() += record;
    }
    char version[11] = "none";
    EXPECT_EQ(call(abecs_cmd_gts, 5, version), ABECS_RSP_STAT_ST_TABERR);
    EXPECT_EQ(call(abecs_cmd_tli, 5, "2026112101"), ABECS_RSP_STAT_ST_OK);
    for (const std::string& batch : batches) EXPECT_EQ(call(abecs_cmd_tlr, batch.c_str()), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(call(abecs_cmd_tle), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(call(abecs_cmd_gts, 5, version), ABECS_RSP_STAT_ST_OK);
    EXPECT_STREQ(version, "2026112101");
    EXPECT_EQ(retire().tables.records(), due);
}

}  // namespace
