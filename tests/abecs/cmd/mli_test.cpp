// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mli.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

#include "quorvel/abecs/cmd/dsi.h"
#include "quorvel/abecs/cmd/mle.h"
#include "quorvel/abecs/cmd/mlr.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

const std::string kName = "001E 0008"_hex;

TEST(Mli, AnnouncesNameSizeCrcAndType) {
    const struct {
        const char* name;
        uint32_t size;
        uint16_t crc;
        uint8_t type;
        std::string field;
        std::string info;
    } rows[] = {
        {"logo", 9, 0x31C3, 1, "LOGO    ", "00000009 31C3 01 000000"_hex},
        {"aZ09_-.~", 0xFFFFFFFF, 0xFFFF, 255, "AZ09_-.~", "FFFFFFFF FFFF FF 000000"_hex},
        {"X", 0x01020304, 0x1617, 0, "X       ", "01020304 1617 00 000000"_hex},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("MLI026" + kName + row.field + "001F 000A"_hex + row.info).response("MLI000");
        EXPECT_EQ(link.call(abecs_cmd_mli)(row.name, row.size, row.crc, row.type), 0) << row.name;
    }
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

// The commands with nothing but their name, or with one fixed argument.
int32_t mli(AbecsComm* comm) { return abecs_cmd_mli(comm, "a", 0, 0, 0); }
int32_t mlr(AbecsComm* comm) { return abecs_cmd_mlr(comm, reinterpret_cast<const uint8_t*>("b"), 1); }
int32_t dsi(AbecsComm* comm) { return abecs_cmd_dsi(comm, "c"); }

TEST(Media, AnswersAreReadAlike) {
    const struct {
        std::string id;
        std::string rest;
        int32_t (*call)(AbecsComm*);
    } rows[] = {
        {"MLI", "026" + kName + "A       " + "001F 000A 00000000 0000 00 000000"_hex, mli},
        {"MLR", "005" + "000F 0001"_hex + "b", mlr},
        {"MLE", "", abecs_cmd_mle},
        {"DSI", "012" + kName + "C       ", dsi},
    };
    for (const auto& row : rows) {
        Link link;
        for (const std::string& response : {row.id + "000", row.id + "101", std::string("ERR010")}) {
            link.peer.request(row.id + row.rest).response(response);
            EXPECT_EQ(link.call(row.call)(), std::stoi(response.substr(3))) << response;
        }
        link.peer.request(row.id + row.rest).response(row.id + "00").request(row.id + row.rest).response("MLX000");
        EXPECT_RAISES(12, "Unrecognized response", row.call(link.comm));
        EXPECT_RAISES(12, "(" + row.id + ") Invalid RSP_ID: MLX)", row.call(link.comm));
        EXPECT_REFUSED(2, "'pinpad' is NULL", row.call(nullptr));
    }
}

TEST(Media, NamesToLoadOrShowAreChecked) {
    const struct {
        const char* name;
        const char* detail;
    } rows[] = {
        {nullptr, "'filename' is NULL"},
        {"", "'filename' is empty"},
        {"NINECHARS", "'filename' is too long (max: 8, requested: 9)"},
        {"12345\x7F", "Invalid character (0x7F) at position 5"},
    };
    Link link;
    for (const auto& row : rows) {
        EXPECT_REFUSED(2, row.detail, abecs_cmd_mli(link.comm, row.name, 0, 0, 0));
        EXPECT_REFUSED(2, row.detail, abecs_cmd_dsi(link.comm, row.name));
    }
}

TEST(Mlr, ChecksItsBlock) {
    const uint8_t data[] = {1};
    Link link;
    EXPECT_REFUSED(2, "'data' is NULL", abecs_cmd_mlr(link.comm, nullptr, 996));
    EXPECT_REFUSED(2, "'szData' is too big (max: 995, req: 996)", abecs_cmd_mlr(link.comm, data, 996));
    EXPECT_REFUSED(2, "'szData' is zero", abecs_cmd_mlr(link.comm, data, 0));
}

}  // namespace
