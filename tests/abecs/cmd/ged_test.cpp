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
    const std::string one = "005" + "0004 0001 82"_hex;
    const std::string missing = "Missing required parameter in response: PP_EMVDATA";
    const auto read = [](size_t count, const std::string& request, const std::string& response, int16_t code,
                         const std::string& expected) {
        Link link;
        link.peer.request("GED" + request).response("GED000" + response);
        const AbecsTagList tags{{0x82}, count};
        AbecsEmvData out{{}, 99};
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_ged(link.comm, &tags, &out); }),
                  code == 0 ? support::Raised{} : support::error(code, expected));
        if (code == 0) { EXPECT_EQ(std::string(out.data, out.data + out.szData), expected); }
        if (code != 0) { EXPECT_EQ(out.szData, 99U); }
    };
    read(3, "007" + "0004 0003 82 0000"_hex, "006" + "8054 0002 8200"_hex, 0, "8200"_hex);
    read(0, "004" + "0004 0000"_hex, "004" + "8054 0000"_hex, 0, "");
    read(128, "132" + "0004 0080 82"_hex + std::string(127, '\0'), "516" + "8054 0200"_hex + full, 0, full);
    read(1, one, "014" + "8057 0001 54 8054 0001 61 8054 0000"_hex + "005" + "8054 0001 62"_hex, 0, "a");
    read(1, one, "", 12, missing);
    read(1, one, "006" + "8055 0002 8200"_hex, 12, missing);
    read(1, one, "517" + "8054 0201"_hex + full + "e", 12, "Malformed PP_EMVDATA");
}

TEST(Ged, ChecksItsArgumentsInTheirOrder) {
    Link link;
    AbecsTagList tags{{0x82}, 129};
    EXPECT_REFUSED(2, "'tagList' is NULL", abecs_cmd_ged(link.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'tagList->szData' is too long (max: 128, requested: 129)",
                   abecs_cmd_ged(link.comm, &tags, nullptr));
    tags.szData = 1;
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_ged(link.comm, &tags, nullptr));
}

}  // namespace
