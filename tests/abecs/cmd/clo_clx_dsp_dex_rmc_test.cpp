// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Clo, SendsItsMessageInThirtyTwoCharacters) {
    const std::string full = "ABCDEFGHIJKLMNOPQRSTUVWXYZ\xC1\xE9 78.";
    exchanges("CLO032" + padded("", 32), "CLO000", kOk, abecs_cmd_clo, nullptr);
    exchanges("CLO032" + full, "CLO040999", ABECS_RSP_STAT_ST_INTERR, abecs_cmd_clo, full.c_str());
    refuses("'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_clo, (full + "9").c_str());
    refuses("Invalid character (0x0D) at position 1", abecs_cmd_clo, "A\rB");
}

TEST(Clx, SendsWhatItIsGiven) {
    const std::string message(128, 'm');
    exchanges("CLX", "CLX000", kOk, abecs_cmd_clx, "", "");
    exchanges("CLX012" + "001E0008"_hex + "LOGO    ", "CLX000", kOk, abecs_cmd_clx, nullptr, "logo");
    exchanges("CLX144" + "001E0008"_hex + "LOGO1234" + "001B0080"_hex + message, "CLX000", kOk, abecs_cmd_clx,
              message.c_str(), "Logo1234");
    refuses("'dspMsg' length (129)  is greater than 128 characters", abecs_cmd_clx, (message + "m").c_str(),
            "NINECHARS");
    refuses("'mfName' length (9) is greater than 8 characters", abecs_cmd_clx, "ok", "NINECHARS");
    refuses("Invalid character (0x0D) at position 0", abecs_cmd_clx, nullptr, "\r");
}

TEST(Dsp, FillsTheDisplayAsRmcDoes) {
    for (const std::string message : {"", "0123456789ABCDEF0123456789abcdef", " INSIRA O CART\xC3O \xFF~"}) {
        exchanges("DSP032" + padded(message, 32), "DSP000", kOk, abecs_cmd_dsp, message.c_str());
        sends("RMC032" + padded(message, 32), abecs_cmd_rmc, message.c_str());
    }
    sends("RMC032" + padded("", 32), abecs_cmd_rmc, nullptr);
}

TEST(Dex, SendsTheTextAsLongAsItIs) {
    const std::string longest = "LINE 1\rLINE 2\rLINE 3" + std::string(140, 'x');
    exchanges("DEX003000", "DEX000", kOk, abecs_cmd_dex, "");
    exchanges("DEX163160" + longest, "DEX000", kOk, abecs_cmd_dex, longest.c_str());
}

TEST(Display, RefusesWhatDoesNotFit) {
    const std::string tooLong(33, 'x');
    const std::string tooLongForDex(161, 'x');
    refuses("'msg' is NULL", abecs_cmd_dsp, nullptr);
    refuses("'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_dsp, tooLong.c_str());
    refuses("Invalid character (0x0D) at position 1", abecs_cmd_dsp, "A\r");
    refuses("'msg' is NULL", abecs_cmd_dex, nullptr);
    refuses("'msg' it too long (maximum: 160, requested: 161)", abecs_cmd_dex, tooLongForDex.c_str());
    refuses("'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_rmc, tooLong.c_str());
}

}  // namespace
