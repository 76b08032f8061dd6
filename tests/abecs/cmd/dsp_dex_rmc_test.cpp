// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Dsp, FillsTheDisplayAsRmcDoes) {
    for (const std::string message : {"HELLO", "", "0123456789ABCDEF0123456789abcdef", " INSIRA O CART\xC3O \xFF~"}) {
        exchanges("DSP032" + padded(message, 32), "DSP000", kOk, abecs_cmd_dsp, message.c_str());
        sends("RMC032" + padded(message, 32), abecs_cmd_rmc, message.c_str());
    }
}

TEST(Dex, SendsTheTextAsLongAsItIs) {
    const std::string longest = "LINE 1\rLINE 2\rLINE 3" + std::string(140, 'x');
    exchanges("DEX004001A", "DEX000", kOk, abecs_cmd_dex, "A");
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
    refuses("Invalid character (0x0A) at position 1", abecs_cmd_dex, "A\n");
    refuses("'msg' it too long (maximum: 32, requested: 33)", abecs_cmd_rmc, tooLong.c_str());
    refuses("Invalid character (0x0D) at position 1", abecs_cmd_rmc, "A\r");
}

}  // namespace
