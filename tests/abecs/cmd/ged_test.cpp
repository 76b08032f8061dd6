// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/ged.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

TEST(Ged, ReadsTheValuesOfTags) {
    const std::string full(512, 'e');
    const std::string one = "0004 0001 82"_hex;
    const std::string missing = "Missing required parameter in response: PP_EMVDATA";
    const struct {
        size_t count;
        std::string request;
        std::string response;
        int16_t code;
        std::string expected;
    } rows[] = {
        {3, "007" + "0004 0003 82 0000"_hex, "GED000006" + "8054 0002 8200"_hex, 0, "8200"_hex},
        {0, "004" + "0004 0000"_hex, "GED000004" + "8054 0000"_hex, 0, ""},
        {128, "132" + "0004 0080 82"_hex + std::string(127, '\0'), "GED000516" + "8054 0200"_hex + full, 0, full},
        {1, "005" + one, "GED000014" + "8057 0001 54 8054 0001 61 8054 0000"_hex + "005" + "8054 0001 62"_hex, 0, "a"},
        {1, "005" + one, "GED000", 12, missing},
        {1, "005" + one, "GED000006" + "8055 0002 8200"_hex, 12, missing},
        {1, "005" + one, "GED000517" + "8054 0201"_hex + full + "e", 12, "Malformed PP_EMVDATA"},
        {1, "005" + one, "GCX000", 12, "(GED) Invalid RSP_ID: GCX)"},
        {1, "005" + one, "NTM000", 12, "(GED) Invalid RSP_ID: NTM)"},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("GED" + row.request).response(row.response);
        const AbecsTagList tags{{0x82}, row.count};
        AbecsEmvData out{{}, 99};
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_ged(link.comm, &tags, &out); }),
                  row.code == 0 ? support::Raised{} : support::error(row.code, row.expected));
        if (row.code == 0) { EXPECT_EQ(std::string(out.data, out.data + out.szData), row.expected); }
    }
}

TEST(Ged, ChecksItsArgumentsInTheirOrder) {
    Link link;
    AbecsTagList tags{{0x82}, 129};
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_ged(nullptr, nullptr, nullptr));
    EXPECT_REFUSED(2, "'tagList' is NULL", abecs_cmd_ged(link.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'tagList->szData' is too long (max: 128, requested: 129)",
                   abecs_cmd_ged(link.comm, &tags, nullptr));
    tags.szData = 1;
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_ged(link.comm, &tags, nullptr));
    link.peer.request("GED005" + "0004 0001 82"_hex).response("GED040");
    AbecsEmvData out{{}, 99};
    EXPECT_EQ(link.call(abecs_cmd_ged)(&tags, &out), 40);
    EXPECT_EQ(out.szData, 99U);
}

}  // namespace
