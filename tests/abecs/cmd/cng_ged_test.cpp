// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

// The lengths count bytes, although digits travel.
TEST(Cng, SendsEveryDigit) {
    const auto sendsAll = [](const std::string& data, const Text& request) {
        exchanges(request, "CNG021999", ABECS_RSP_STAT_ST_TABERR, abecs_cmd_cng, data.c_str());
    };
    sendsAll("9f0206aB", "CNG|006|04|9F0206AB"_wire);
    sendsAll("f", "CNG|002|00|F"_wire);
    sendsAll(std::string(198, '9'), "CNG|101|99"_wire + std::string(198, '9'));
    refuses("'emvDat' is NULL", abecs_cmd_cng, nullptr);
    refuses("'emvDat' length is greater than 198 characters", abecs_cmd_cng, std::string(199, '9').c_str());
    refuses("Invalid hex byte at index 4", abecs_cmd_cng, "9F02g");
}

TEST(Ged, ReadsTheValuesOfTags) {
    const std::string full(512, 'e');
    const Text one = "GED005" + "0004 0001 82"_hex;
    const Raised missing = error(kProtocol, "Missing required parameter in response: PP_EMVDATA");
    // The data, or the error.
    const auto reads = [](size_t count, const Text& request, const std::string& response, const std::string& data,
                          const Outcome& expected = kOk) {
        const AbecsTagList tags{{0x82}, count};
        AbecsEmvData out{{}, 99};
        exchanges(request, "GED000" + response, expected, abecs_cmd_ged, &tags, &out);
        const bool good = expected == kOk;
        EXPECT_EQ(out.szData, good ? data.size() : 99U);
        if (good) { EXPECT_EQ(std::string(out.data, out.data + out.szData), data); }
    };
    reads(0, "GED004" + "0004 0000"_hex, "004" + "8054 0000"_hex, "");
    reads(128, "GED132" + "0004 0080 82"_hex + std::string(127, '\0'), "516" + "8054 0200"_hex + full, full);
    reads(1, one, "014" + "8057 0001 54 8054 0001 61 8054 0000"_hex + "005" + "8054 0001 62"_hex, "a");
    reads(1, one, "006" + "8055 0002 8200"_hex, "", missing);
    reads(1, one, "517" + "8054 0201"_hex + full + "e", "", error(kProtocol, "Malformed PP_EMVDATA"));
    const AbecsTagList tooLong{{0x82}, 129};
    const AbecsTagList tags{{0x82}, 1};
    refuses("'tagList' is NULL", abecs_cmd_ged, nullptr, nullptr);
    refuses("'tagList->szData' is too long (max: 128, requested: 129)", abecs_cmd_ged, &tooLong, nullptr);
    refuses("'out' is NULL", abecs_cmd_ged, &tags, nullptr);
}

}  // namespace
