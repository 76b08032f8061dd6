// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>

#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Clo, SendsItsMessageInThirtyTwoCharacters) {
    const std::string full = "ABCDEFGHIJKLMNOPQRSTUVWXYZ\xC1\xE9 78.";
    exchanges("CLO032" + padded("BYE", 32), "CLO000", kOk, abecs_cmd_clo, "BYE");
    exchanges("CLO032" + full, "CLO040999", ABECS_RSP_STAT_ST_INTERR, abecs_cmd_clo, full.c_str());
    refuses("'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_clo, (full + "9").c_str());
    refuses("Invalid character (0x0D) at position 1", abecs_cmd_clo, "A\rB");
}

TEST(Clx, SendsWhatItIsGiven) {
    const std::string message(128, 'm');
    exchanges("CLX", "CLX000", kOk, abecs_cmd_clx, "", "");
    exchanges("CLX012" + "001E0008"_hex + "LOGO    ", "CLX000", kOk, abecs_cmd_clx, nullptr, "logo");
    exchanges("CLX007" + "001B0003"_hex + "A\rB", "CLX000", kOk, abecs_cmd_clx, "A\rB", nullptr);
    exchanges("CLX144" + "001E0008"_hex + "LOGO1234" + "001B0080"_hex + message, "CLX000", kOk, abecs_cmd_clx,
              message.c_str(), "Logo1234");
    refuses("'dspMsg' length (129)  is greater than 128 characters", abecs_cmd_clx, (message + "m").c_str(),
            "NINECHARS");
    refuses("'mfName' length (9) is greater than 8 characters", abecs_cmd_clx, "ok", "NINECHARS");
    refuses("Invalid character (0x0D) at position 0", abecs_cmd_clx, nullptr, "\r");
}

TEST(Close, BothDropTheKeysWhateverTheAnswer) {
    const std::array<uint8_t, 16> key{1, 2, 3};
    const AbecsWkPan wkPan{ABECS_WK_PAN_TYPE_TDES, {4, 5, 6}};
    const Outcome bad = error(kIo, "Invalid char (0x78) at index 1");
    for (const auto& [extended, stat] : {std::pair{false, "000"}, {true, "000"}, {false, "0x0"}, {true, "0x0"}}) {
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &wkPan));
        EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, key.data()));
        link.comm->keySet = false;  // so that the request can be spelled; the bytes must go all the same
        link.peer.request(extended ? "CLX" : "CLO032" + std::string(32, ' '));
        link.peer.response((extended ? "CLX" : "CLO") + std::string(stat));
        const auto close = [&link, extended = extended] {
            return extended ? abecs_cmd_clx(link.comm, nullptr, nullptr) : abecs_cmd_clo(link.comm, nullptr);
        };
        EXPECT_EQ(outcome_of(close), stat[1] == '0' ? kOk : bad);
        EXPECT_FALSE(link.comm->keySet || link.comm->panKeyInstalled || link.comm->panProtected);
        EXPECT_EQ(link.comm->key, (std::array<uint8_t, 16>{}));
    }
}

}  // namespace
