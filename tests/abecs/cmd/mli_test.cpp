// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mli.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

#include "quorvel/abecs/cmd/dsi.h"
#include "quorvel/abecs/cmd/mlr.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

TEST(Mli, AnnouncesNameSizeCrcAndType) {
    const auto announces = [](const char* name, uint32_t size, uint16_t crc, uint8_t type, const std::string& sent) {
        Link link;
        link.peer.request("MLI026" + "001E 0008"_hex + sent).response("MLI000");
        EXPECT_EQ(link.call(abecs_cmd_mli)(name, size, crc, type), 0) << name;
    };
    announces("logo", 9, 0x31C3, 1, "LOGO    " + "001F 000A 00000009 31C3 01 000000"_hex);
    announces("aZ09_-.~", 0xFFFFFFFF, 0xFFFF, 255, "AZ09_-.~" + "001F 000A FFFFFFFF FFFF FF 000000"_hex);
    announces("X", 0x01020304, 0x1617, 0, "X       " + "001F 000A 01020304 1617 00 000000"_hex);
}

TEST(Mlr, SendsOneBlock) {
    std::array<uint8_t, 995> data{};
    data.fill('d');
    data[0] = 0x17;
    Link link;
    link.peer.request("MLR005" + "000F 0001 17"_hex).response("MLR000");
    EXPECT_EQ(link.call(abecs_cmd_mlr)(data.data(), 1), 0);
    link.peer.request("MLR999" + "000F 03E3 17"_hex + std::string(994, 'd')).response("MLR102");
    EXPECT_EQ(link.call(abecs_cmd_mlr)(data.data(), 995), 102);
}

TEST(Media, NamesToLoadOrShowAreChecked) {
    Link link;
    const auto refused = [&](const char* name, const char* detail) {
        EXPECT_REFUSED(2, detail, abecs_cmd_mli(link.comm, name, 0, 0, 0));
        EXPECT_REFUSED(2, detail, abecs_cmd_dsi(link.comm, name));
    };
    refused(nullptr, "'filename' is NULL");
    refused("", "'filename' is empty");
    refused("NINECHARS", "'filename' is too long (max: 8, requested: 9)");
    refused("12345\x7F", "Invalid character (0x7F) at position 5");
}

TEST(Mlr, ChecksItsBlock) {
    const uint8_t data[] = {1};
    Link link;
    EXPECT_REFUSED(2, "'data' is NULL", abecs_cmd_mlr(link.comm, nullptr, 996));
    EXPECT_REFUSED(2, "'szData' is too big (max: 995, req: 996)", abecs_cmd_mlr(link.comm, data, 996));
    EXPECT_REFUSED(2, "'szData' is zero", abecs_cmd_mlr(link.comm, data, 0));
}

}  // namespace
