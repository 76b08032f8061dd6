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
    const auto sends = [](const char* message, const std::string& field) {
        ASSERT_EQ(field.size(), 32U);
        Link link;
        link.peer.request("DSP032" + field).response("DSP000").request("RMC032" + field);
        EXPECT_EQ(link.call(abecs_cmd_dsp)(message), 0);
        link.call(abecs_cmd_rmc)(message);
    };
    sends("HELLO", "HELLO                           ");
    sends("", "                                ");
    sends("0123456789ABCDEF0123456789abcdef", "0123456789ABCDEF0123456789abcdef");
    sends(" INSIRA O CART\xC3O \xFF~", " INSIRA O CART\xC3O \xFF~             ");
}

TEST(Dex, SendsTheTextAsLongAsItIs) {
    const auto sends = [](const std::string& message, const std::string& head) {
        Link link;
        link.peer.request("DEX" + head + message).response("DEX000");
        EXPECT_EQ(link.call(abecs_cmd_dex)(message.c_str()), 0);
    };
    sends("A", "004001");
    sends(kLines, "023020");
    sends(kLines + std::string(140, 'x'), "163160");
    sends("\r\r", "005002");
}

TEST(Display, RefusesWhatDoesNotFit) {
    Link link;
    const std::string tooLong(33, 'x');
    const std::string tooLongForDex(161, 'x');
    EXPECT_REFUSED(2, "'msg' is NULL", abecs_cmd_dsp(link.comm, nullptr));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_dsp(link.comm, tooLong.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 6", abecs_cmd_dsp(link.comm, kLines.c_str()));
    EXPECT_REFUSED(2, "'msg' is NULL", abecs_cmd_dex(link.comm, nullptr));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 160, requested: 161)",
                   abecs_cmd_dex(link.comm, tooLongForDex.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0A) at position 1", abecs_cmd_dex(link.comm, "A\n"));
    EXPECT_REFUSED(2, "'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_rmc(link.comm, tooLong.c_str()));
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 6", abecs_cmd_rmc(link.comm, kLines.c_str()));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

}  // namespace
