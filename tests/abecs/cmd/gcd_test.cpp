// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcd.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

TEST(Gcd, SendsTheTimeOutOnlyWhenThereIsOne) {
    const struct {
        uint16_t index;
        uint8_t min;
        uint8_t max;
        uint8_t timeout;
        std::string data;
    } rows[] = {
        {1, 0, 0, 0, "016" + "000B 0002 0001 000D 0001 00 000E 0001 00"_hex},
        {0xFFFF, 32, 32, 0, "016" + "000B 0002 FFFF 000D 0001 20 000E 0001 20"_hex},
        {0x1316, 4, 19, 255, "021" + "000B 0002 1316 000D 0001 04 000E 0001 13 000C 0001 FF"_hex},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("GCD" + row.data);
        link.call(abecs_cmd_gcd)(row.index, row.min, row.max, row.timeout);
    }
}

TEST(Gcd, RefusesMoreThan32Digits) {
    Link link;
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gcd(nullptr, 1, 33, 33, 0));
    EXPECT_REFUSED(2, "Invalid value for minDig: 33 (max: 32)", abecs_cmd_gcd(link.comm, 1, 33, 34, 0));
    EXPECT_REFUSED(2, "Invalid value for maxDig: 255 (max: 32)", abecs_cmd_gcd(link.comm, 1, 32, 255, 0));
    EXPECT_REFUSED(2, "minDig (5) > maxDig (4)", abecs_cmd_gcd(link.comm, 1, 5, 4, 0));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

class GcdAnswer : public testing::Test {
protected:
    GcdAnswer() {
        link_.peer.request("GCD016" + "000B 0002 0001 000D 0001 01 000E 0001 20"_hex);
        link_.call(abecs_cmd_gcd)(1, 1, 32, 0);
    }

    Link link_;
    char out_[1000] = "old";
};

TEST_F(GcdAnswer, IsTheNumberWhereverItStands) {
    link_.peer.response(
        "GCD000"
        "016"
        + "8050 0000 804D 0004"_hex + "0042" + "804D 0000"_hex);
    EXPECT_EQ(link_.call(abecs_cmd_gcd_response)(out_, nullptr), 0);
    EXPECT_STREQ(out_, "0042");
}

TEST_F(GcdAnswer, MayStandInTheSecondBlock) {
    link_.peer.response(
        "GCD000"
        "004"
        + "8050 0000"_hex + "036" + "804D 0020"_hex + "01234567890123456789012345678901");
    EXPECT_EQ(link_.call(abecs_cmd_gcd_response)(out_, nullptr), 0);
    EXPECT_STREQ(out_, "01234567890123456789012345678901");
}

TEST_F(GcdAnswer, MayBeEmpty) {
    link_.peer.response("GCD000004" + "804D 0000"_hex);
    EXPECT_EQ(link_.call(abecs_cmd_gcd_response)(out_, nullptr), 0);
    EXPECT_STREQ(out_, "");
}

TEST_F(GcdAnswer, IsNotCutShort) {
    link_.peer.response("GCD000999" + "804D 03E3"_hex + std::string(995, '7'));
    EXPECT_EQ(link_.call(abecs_cmd_gcd_response)(out_, nullptr), 0);
    EXPECT_EQ(out_, std::string(995, '7'));
}

TEST_F(GcdAnswer, WithoutANumberIsAnError) {
    for (const std::string& data : {std::string(), std::string("000"), "004" + "8050 0000"_hex}) {
        link_.peer.response("GCD000" + data);
        EXPECT_RAISES(12, "PP_VALUE not found on response", abecs_cmd_gcd_response(link_.comm, out_, nullptr));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "GCD");
    }
    EXPECT_STREQ(out_, "old");
}

TEST_F(GcdAnswer, OfAnotherStatusLeavesTheText) {
    link_.peer.response("GCD013");
    EXPECT_EQ(link_.call(abecs_cmd_gcd_response)(out_, nullptr), 13);
    EXPECT_STREQ(out_, "old");
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
}

}  // namespace
