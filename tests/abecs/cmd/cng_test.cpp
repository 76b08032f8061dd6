// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cng.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"

namespace {

using namespace support::literals;
using support::Link;

// The lengths count bytes, although digits travel.
TEST(Cng, SendsEveryDigit) {
    const std::string most(198, '9');
    const struct {
        std::string data;
        std::string request;
        const char* response;
        int32_t stat;
    } rows[] = {
        {"", "002|00"_wire, "CNG000", 0},
        {"9f0206aB", "006|04|9F0206AB"_wire, "CNG000", 0},
        {"30", "003|01|30"_wire, "ERR010", 10},
        {"f", "002|00|F"_wire, "CNG021999", 21},
        {std::string(197, 'c'), "100|98"_wire + std::string(197, 'C'), "CNG000", 0},
        {most, "101|99"_wire + most, "CNG000", 0},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("CNG" + row.request).response(row.response);
        EXPECT_EQ(link.call(abecs_cmd_cng)(row.data.c_str()), row.stat) << row.data;
    }
}

TEST(Cng, RefusesBadArgumentsAndAnswers) {
    Link link;
    const auto refused = [&](const char* data, const char* detail) {
        EXPECT_REFUSED(2, detail, abecs_cmd_cng(link.comm, data));
    };
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_cng(nullptr, nullptr));
    refused(nullptr, "'emvDat' is NULL");
    refused(std::string(199, '9').c_str(), "'emvDat' length is greater than 198 characters");
    refused("9F0G", "Invalid hex byte at index 2");
    refused("9F0G0", "Invalid hex byte at index 2");
    refused("9F02g", "Invalid hex byte at index 4");
    link.peer.request("CNG00200").response("CNG00").request("CNG00200").response("GED000");
    EXPECT_RAISES(12, "Unrecognized response", abecs_cmd_cng(link.comm, ""));
    EXPECT_RAISES(12, "(CNG) Invalid RSP_ID: GED)", abecs_cmd_cng(link.comm, ""));
}

}  // namespace
