// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gix.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/abecs/cmd/param_map.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using Items = support::ParamMap::Items;

class Gix : public testing::Test {
protected:
    int32_t gix(const std::vector<int32_t>& ids) {
        return link_.call(abecs_cmd_gix)(ids.data(), ids.size(), map_.get());
    }

    support::ParamMap map_;
    Link link_;
};

TEST_F(Gix, ReadsItemsOfBothBlocks) {
    link_.peer.request("GIX008" + "0001 0004 8001 805A"_hex)
        .response("GIX000018" + "8001 0006"_hex + "SN0042" + "805A 0004 00FF1617"_hex);
    EXPECT_EQ(gix({0x8001, 0x805A}), 0);
    EXPECT_EQ(map_.items(), (Items{{0x8001, "SN0042"}, {0x805A, "00FF1617"_hex}}));
    link_.peer.request("GIX").response("GIX000005" + "8001 0001 41"_hex + "009" + "9305 0000 8002 0001 42"_hex);
    EXPECT_EQ(gix({}), 0);
    EXPECT_EQ(map_.items(), (Items{{0x8001, "A"}, {0x8002, "B"}, {0x9305, ""}}));
}

TEST_F(Gix, EmptiesTheMapFirstAndAcceptsEmptyBlocks) {
    for (const std::string response : {"GIX000", "GIX000000", "GIX000000000", "GIX011", "ERR010"}) {
        link_.peer.request("GIX").response("GIX000005" + "8001 0001 41"_hex + "000");
        EXPECT_EQ(gix({}), 0);
        EXPECT_EQ(map_.items(), (Items{{0x8001, "A"}}));
        link_.peer.request("GIX").response(response);
        EXPECT_EQ(gix({}), std::stoi(response.substr(3, 3)));
        EXPECT_EQ(map_.items(), Items{}) << response;
    }
}

TEST_F(Gix, MalformedAnswersLeaveNothingInTheMap) {
    const auto refused = [&](const std::string& blocks, int16_t code, const char* detail) {
        link_.peer.request("GIX").response("GIX000" + blocks);
        EXPECT_RAISES(code, detail, abecs_cmd_gix(link_.comm, nullptr, 0, map_.get()));
        EXPECT_EQ(map_.items(), Items{}) << detail;
    };
    const std::string good = "8001 0001 41"_hex;
    refused("006" + good, 6, "Invalid packet (malformed)");
    refused("008" + good + "abc", 6, "Malformed packet (remaining bytes on BLK1 cannot be used)");
    refused("005" + good + "001A", 6, "Malformed packet (remaining bytes on BLK2 cannot be used)");
    refused("010" + good + "8002 0002 42"_hex, 12, "Malformed parameter (expected data length: 2, available: 1)");
    refused("005" + "8001 0002 41"_hex + "001B", 6, "Malformed packet (remaining bytes on BLK1 cannot be used)");
}

TEST_F(Gix, ChecksItsArgumentsInTheirOrder) {
    const int32_t bad[65] = {0x1234};
    EXPECT_REFUSED(2, "'idListSize' (65) exceeds maximum allowed (64)",
                   abecs_cmd_gix(link_.comm, nullptr, 65, nullptr));
    EXPECT_REFUSED(2, "'idList' is NULL", abecs_cmd_gix(link_.comm, nullptr, 1, nullptr));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdGixId_E at index 0: 4660 (1234)",
                   abecs_cmd_gix(link_.comm, bad, 64, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gix(link_.comm, nullptr, 0, nullptr));
    const AbecsRspParamValue old{};
    abecs_rsp_param_map_put(map_.get(), 1, &old, false);
    const auto kept = [&](AbecsComm* link, const int32_t* ids, size_t count) {
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_gix(link, ids, count, map_.get()); }).code, 2);
        EXPECT_EQ(map_.items(), (Items{{1, ""}}));
    };
    kept(nullptr, nullptr, 0);
    kept(link_.comm, bad, 65);
    kept(link_.comm, nullptr, 1);
    kept(link_.comm, bad, 1);
}

TEST_F(Gix, KnowsTheIdsThatCanBeAsked) {
    const std::vector<std::pair<int32_t, int32_t>> valid{
        {0x8001, 0x800A}, {0x8010, 0x8016}, {0x8020, 0x8022}, {0x8030, 0x8036}, {0x805A, 0x805A},
        {0x8062, 0x8062}, {0x9000, 0x9063}, {0x9100, 0x9163}, {0x9200, 0x9263}, {0x9300, 0x9363}};
    // A valid list passes the ids' check and fails at the next, so that nothing has to be sent.
    for (int32_t id = 0x7FFE; id < 0x9400; ++id) {
        bool known = false;
        for (const auto& [first, last] : valid) { known = known || (first <= id && id <= last); }
        const std::string message = support::raised_by([&] { abecs_cmd_gix(link_.comm, &id, 1, nullptr); }).message;
        EXPECT_EQ(message == "[KOR_RESULT_ILLEGAL_ARGUMENT] 'out' is NULL", known) << id;
    }
    const int32_t negative[] = {0x8001, -1};
    EXPECT_RAISES(2, "Invalid enumerator for AbecsCmdGixId_E at index 1: -1 (FFFFFFFF)",
                  abecs_cmd_gix(link_.comm, negative, 2, map_.get()));
}

TEST_F(Gix, AnIdOfAFamilyEndsTheCheck) {
    link_.peer.request("GIX012" + "0001 0008 9000 1234 FFFF 4567"_hex).response("GIX000");
    EXPECT_EQ(gix({0x9000, 0x1234, -1, 0x1234567}), 0);
    const int32_t ids[] = {0x8001, 0x1234, 0x9000};
    EXPECT_RAISES(2, "Invalid enumerator for AbecsCmdGixId_E at index 1: 4660 (1234)",
                  abecs_cmd_gix(link_.comm, ids, 3, map_.get()));
}

TEST_F(Gix, Asks64IdsInOneParameter) {
    std::string ids;
    for (int i = 0; i < 64; ++i) { ids += "8001"_hex; }
    link_.peer.request("GIX132" + "0001 0080"_hex + ids).response("GIX000");
    EXPECT_EQ(gix(std::vector<int32_t>(64, 0x8001)), 0);
}

}  // namespace
