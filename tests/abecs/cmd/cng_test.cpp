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
    const auto sends = [](const std::string& data, const std::string& request, const char* response, int32_t stat) {
        Link link;
        link.peer.request("CNG" + request).response(response);
        EXPECT_EQ(link.call(abecs_cmd_cng)(data.c_str()), stat) << data;
    };
    sends("9f0206aB", "006|04|9F0206AB"_wire, "CNG000", 0);
    sends("30", "003|01|30"_wire, "ERR010", 10);
    sends("f", "002|00|F"_wire, "CNG021999", 21);
    sends(std::string(197, 'c'), "100|98"_wire + std::string(197, 'C'), "CNG000", 0);
    sends(std::string(198, '9'), "101|99"_wire + std::string(198, '9'), "CNG000", 0);
}

TEST(Cng, RefusesBadArguments) {
    Link link;
    const auto refused = [&](const char* data, const char* detail) {
        EXPECT_REFUSED(2, detail, abecs_cmd_cng(link.comm, data));
    };
    refused(nullptr, "'emvDat' is NULL");
    refused(std::string(199, '9').c_str(), "'emvDat' length is greater than 198 characters");
    refused("9F0G", "Invalid hex byte at index 2");
    refused("9F0G0", "Invalid hex byte at index 2");
    refused("9F02g", "Invalid hex byte at index 4");
}

}  // namespace
