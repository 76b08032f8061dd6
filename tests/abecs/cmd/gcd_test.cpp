// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcd.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

TEST(Gcd, SendsTheTimeOutOnlyWhenThereIsOne) {
    const auto sends = [](uint16_t index, uint8_t min, uint8_t max, uint8_t timeout, const std::string& data) {
        Link link;
        link.peer.request("GCD" + data);
        link.call(abecs_cmd_gcd)(index, min, max, timeout);
    };
    sends(1, 0, 0, 0, "016" + "000B 0002 0001 000D 0001 00 000E 0001 00"_hex);
    sends(0xFFFF, 32, 32, 0, "016" + "000B 0002 FFFF 000D 0001 20 000E 0001 20"_hex);
    sends(0x1316, 4, 19, 255, "021" + "000B 0002 1316 000D 0001 04 000E 0001 13 000C 0001 FF"_hex);
}

TEST(Gcd, RefusesMoreThan32Digits) {
    Link link;
    EXPECT_REFUSED(2, "Invalid value for minDig: 33 (max: 32)", abecs_cmd_gcd(link.comm, 1, 33, 34, 0));
    EXPECT_REFUSED(2, "Invalid value for maxDig: 255 (max: 32)", abecs_cmd_gcd(link.comm, 1, 32, 255, 0));
    EXPECT_REFUSED(2, "Invalid value for maxDig: 33 (max: 32)", abecs_cmd_gcd(link.comm, 1, 0, 33, 0));
    EXPECT_REFUSED(2, "minDig (5) > maxDig (4)", abecs_cmd_gcd(link.comm, 1, 5, 4, 0));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

void send(Link& link) {
    link.peer.request("GCD016" + "000B 0002 0001 000D 0001 01 000E 0001 20"_hex);
    link.call(abecs_cmd_gcd)(1, 1, 32, 0);
}

TEST(Gcd, ReadsTheNumberWhereverItStandsAndHoweverLongItIs) {
    const auto reads = [](const std::string& data, const std::string& number) {
        Link link;
        send(link);
        link.peer.response("GCD000" + data);
        char out[996];
        std::memset(out, 'o', sizeof out);
        EXPECT_EQ(link.call(abecs_cmd_gcd_response)(out, nullptr), 0);
        EXPECT_EQ(out, number);
    };
    const std::string digits = "01234567890123456789012345678901";
    reads("016" + "8050 0000 804D 0004"_hex + "0042" + "804D 0000"_hex, "0042");
    reads("004" + "8050 0000"_hex + "036" + "804D 0020"_hex + digits, digits);
    reads("004" + "804D 0000"_hex, "");
    reads("999" + "804D 03E3"_hex + std::string(995, '7'), std::string(995, '7'));
}

TEST(Gcd, AnAnswerWithoutANumberIsAnError) {
    Link link;
    send(link);
    char out[33] = "old";
    for (const std::string& data : {std::string(), std::string("000"), "004" + "8050 0000"_hex}) {
        link.peer.response("GCD000" + data);
        EXPECT_RAISES(12, "PP_VALUE not found on response", abecs_cmd_gcd_response(link.comm, out, nullptr));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GCD");
    }
    EXPECT_STREQ(out, "old");
}

}  // namespace
