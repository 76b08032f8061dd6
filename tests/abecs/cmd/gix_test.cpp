// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gix.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/kor/map.h"
#include "tests/support/link.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using Items = std::map<int, std::string>;

class Gix : public testing::Test {
protected:
    ~Gix() override { kor_map_delete(&map_); }

    Items items() {
        Items all;
        AbecsRspParamMapIt it{};
        for (auto* at = abecs_rsp_param_map_begin(map_, &it); at != nullptr; at = abecs_rsp_param_map_next(at)) {
            all[at->id] = std::string(at->value.data, at->value.data + at->value.size);
        }
        return all;
    }

    int32_t gix(const std::vector<int32_t>& ids) { return link_.call(abecs_cmd_gix)(ids.data(), ids.size(), map_); }

    Link link_;
    AbecsRspParamMap* map_ = abecs_rsp_param_map_new();
};

TEST_F(Gix, ReadsItemsOfOneBlock) {
    link_.peer.request("GIX008" + "0001 0004 8001 805A"_hex)
        .response("GIX000018" + "8001 0006"_hex + "SN0042" + "805A 0004 00FF1617"_hex);
    EXPECT_EQ(gix({0x8001, 0x805A}), 0);
    EXPECT_EQ(items(), (Items{{0x8001, "SN0042"}, {0x805A, "00FF1617"_hex}}));
}

TEST_F(Gix, ReadsItemsOfTwoBlocks) {
    link_.peer.request("GIX").response("GIX000005" + "8001 0001 41"_hex + "009" + "9305 0000 8002 0001 42"_hex);
    EXPECT_EQ(gix({}), 0);
    EXPECT_EQ(items(), (Items{{0x8001, "A"}, {0x8002, "B"}, {0x9305, ""}}));
}

TEST_F(Gix, AcceptsEmptyBlocks) {
    for (const std::string response : {"GIX000", "GIX000000", "GIX000000000"}) {
        link_.peer.request("GIX").response(response);
        EXPECT_EQ(gix({}), 0);
        EXPECT_EQ(items(), Items{}) << response;
    }
    link_.peer.request("GIX").response("GIX000005" + "8001 0001 41"_hex + "000");
    EXPECT_EQ(gix({}), 0);
    EXPECT_EQ(items(), (Items{{0x8001, "A"}}));
}

TEST_F(Gix, EmptiesTheMapFirst) {
    for (const std::string response : {"GIX011", "ERR010"}) {
        link_.peer.request("GIX").response("GIX000005" + "8001 0001 41"_hex);
        EXPECT_EQ(gix({}), 0);
        ASSERT_EQ(items().size(), 1U);
        link_.peer.request("GIX").response(response);
        EXPECT_EQ(gix({}), response == "ERR010" ? 10 : 11);
        EXPECT_EQ(items(), Items{}) << response;
    }
}

TEST_F(Gix, MalformedAnswersLeaveNothingInTheMap) {
    const std::string good = "8001 0001 41"_hex;
    struct Case {
        std::string response;
        int16_t code;
        const char* detail;
    };
    const Case cases[] = {
        {"GIX00", 6, "Invalid packet (not enough data)"},
        {"GIN000", 12, "(GIX) Invalid RSP_ID: GIN)"},
        {"GIX099", 12, "Unknown value for RSP_STAT: 099"},
        {"GIX000006" + good, 6, "Invalid packet (malformed)"},
        {"GIX000005" + good + "001", 6, "Invalid packet (malformed)"},
        {"GIX000005" + good + "000x", 6, "Invalid packet (unsupported block)"},
        {"GIX000008" + good + "abc", 6, "Malformed packet (remaining bytes on BLK1 cannot be used)"},
        {"GIX000005" + good + "001A", 6, "Malformed packet (remaining bytes on BLK2 cannot be used)"},
        {"GIX000010" + good + "8002 0002 42"_hex, 12, "Malformed parameter (expected data length: 2, available: 1)"},
    };
    for (const Case& c : cases) {
        link_.peer.request("GIX").response(c.response);
        EXPECT_RAISES(c.code, c.detail, abecs_cmd_gix(link_.comm, nullptr, 0, map_));
        EXPECT_EQ(items(), Items{}) << c.detail;
    }
}

TEST_F(Gix, ParameterReachingBeyondItsBlockIsRefused) {
    link_.peer.request("GIX").response("GIX000005" + "8001 0002 41"_hex + "001B");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Malformed packet (remaining bytes on BLK1 cannot be used)",
                  abecs_cmd_gix(link_.comm, nullptr, 0, map_));
    EXPECT_EQ(items(), Items{});
}

TEST_F(Gix, ChecksItsArgumentsInTheirOrder) {
    const int32_t bad[65] = {0x1234};
    EXPECT_RAISES(2, "'pinpad' is NULL", abecs_cmd_gix(nullptr, nullptr, 65, nullptr));
    EXPECT_RAISES(2, "'idListSize' (65) exceeds maximum allowed (64)", abecs_cmd_gix(link_.comm, nullptr, 65, nullptr));
    EXPECT_RAISES(2, "'idList' is NULL", abecs_cmd_gix(link_.comm, nullptr, 1, nullptr));
    EXPECT_RAISES(2, "Invalid enumerator for AbecsCmdGixId_E at index 0: 4660 (1234)",
                  abecs_cmd_gix(link_.comm, bad, 64, nullptr));
    EXPECT_RAISES(2, "'out' is NULL", abecs_cmd_gix(link_.comm, nullptr, 0, nullptr));
    const support::ReturningRaises handler;
    EXPECT_EQ(abecs_cmd_gix(nullptr, nullptr, 0, map_), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs_cmd_gix(link_.comm, bad, 1, map_), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs_cmd_gix(link_.comm, nullptr, 0, nullptr), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(handler.all().size(), 3U);
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
                  abecs_cmd_gix(link_.comm, negative, 2, map_));
}

TEST_F(Gix, AnIdOfAFamilyEndsTheCheck) {
    link_.peer.request("GIX012" + "0001 0008 9000 1234 FFFF 4567"_hex).response("GIX000");
    EXPECT_EQ(gix({0x9000, 0x1234, -1, 0x1234567}), 0);
    EXPECT_RAISES(2, "Invalid enumerator for AbecsCmdGixId_E at index 1: 4660 (1234)", ([&] {
                      const int32_t ids[] = {0x8001, 0x1234, 0x9000};
                      abecs_cmd_gix(link_.comm, ids, 3, map_);
                  }()));
}

TEST_F(Gix, Asks64IdsInOneParameter) {
    std::string ids;
    for (int i = 0; i < 64; ++i) { ids += "8001"_hex; }
    link_.peer.request("GIX132" + "0001 0080"_hex + ids).response("GIX000");
    EXPECT_EQ(gix(std::vector<int32_t>(64, 0x8001)), 0);
}

}  // namespace
