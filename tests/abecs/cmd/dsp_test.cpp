// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dsp.h"

#include <gtest/gtest.h>
#include <string>

#include "quorvel/abecs/cmd/dex.h"
#include "quorvel/abecs/cmd/rmc.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

const std::string kLines = "LINE 1\rLINE 2\rLINE 3";

TEST(Dsp, FillsTheDisplay) {
    const struct {
        std::string message;
        std::string field;
    } rows[] = {
        {"HELLO", "HELLO                           "},
        {"", "                                "},
        {"0123456789ABCDEF0123456789abcdef", "0123456789ABCDEF0123456789abcdef"},
        {" INSIRA O CART\xC3O \xFF~", " INSIRA O CART\xC3O \xFF~             "},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(row.field.size(), 32U);
        Link link;
        link.peer.request("DSP032" + row.field).response("DSP000");
        EXPECT_EQ(link.call(abecs_cmd_dsp)(row.message.c_str()), 0);
        link.peer.request("RMC032" + row.field);
        link.call(abecs_cmd_rmc)(row.message.c_str());
    }
}

TEST(Dex, SendsTheTextAsLongAsItIs) {
    const std::string longest = kLines + std::string(140, 'x');
    const struct {
        std::string message;
        std::string head;
    } rows[] = {{"", "003000"}, {"A", "004001"}, {kLines, "023020"}, {longest, "163160"}, {"\r\r", "005002"}};
    for (const auto& row : rows) {
        Link link;
        link.peer.request("DEX" + row.head + row.message).response("DEX000");
        EXPECT_EQ(link.call(abecs_cmd_dex)(row.message.c_str()), 0);
    }
}

TEST(Display, RefusesWhatDoesNotFit) {
    Link link;
    const std::string tooLong(33, 'x');
    const std::string tooLongForDex(161, 'x');
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_dsp(nullptr, nullptr));
    EXPECT_REFUSED(2, "'msg' is NULL", abecs_cmd_dsp(link.comm, nullptr));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_dsp(link.comm, tooLong.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 6", abecs_cmd_dsp(link.comm, kLines.c_str()));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_dex(nullptr, nullptr));
    EXPECT_REFUSED(2, "'msg' is NULL", abecs_cmd_dex(link.comm, nullptr));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 160, requested: 161)",
                   abecs_cmd_dex(link.comm, tooLongForDex.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0A) at position 1", abecs_cmd_dex(link.comm, "A\n"));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_rmc(nullptr, tooLong.c_str()));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_rmc(link.comm, tooLong.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 6", abecs_cmd_rmc(link.comm, kLines.c_str()));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

}  // namespace
