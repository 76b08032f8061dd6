// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mnu.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

const std::string kOption = "0020 0018"_hex;
constexpr char kTea[][25] = {"TEA"};

void send(Link& link) {
    link.peer.request("MNU028" + kOption + "TEA                     ");
    link.call(abecs_cmd_mnu)(0, nullptr, kTea, 1);
}

TEST(Mnu, SendsTwentyOptionsAndNothingElse) {
    char options[20][25] = {};
    std::string sent = "MNU560";
    for (size_t i = 0; i < 20; ++i) {
        std::string text = "OPTION" + std::to_string(i);
        text.copy(options[i], sizeof options[i] - 1);
        text.resize(24, ' ');
        sent += kOption + text;
    }
    for (const char* message : {static_cast<const char*>(nullptr), ""}) {
        Link link;
        link.peer.request(sent);
        link.call(abecs_cmd_mnu)(0, message, options, 20);
    }
}

TEST(Mnu, SendsTimeOutAndTitleFirst) {
    constexpr char kOptions[][25] = {"0123456789abcdefghijKLMN", ""};
    const std::string title = "CHOOSE\rONE \xC9";
    const std::string longest(128, 'x');
    Link link;
    link.peer.request("MNU193" + "000C 0001 FF 001B 0080"_hex + title + std::string(116, ' ') + kOption
                      + "0123456789abcdefghijKLMN" + kOption + std::string(24, ' '));
    link.call(abecs_cmd_mnu)(255, title.c_str(), kOptions, 2);
    Link other;
    other.peer.request("MNU160" + "001B 0080"_hex + longest + kOption + "TEA                     ");
    other.call(abecs_cmd_mnu)(0, longest.c_str(), kTea, 1);
}

TEST(Mnu, ChecksItsArgumentsInOrder) {
    Link link;
    const std::string tooLong(129, 'x');
    EXPECT_REFUSED(2, "'dspMsg' is too long", abecs_cmd_mnu(link.comm, 0, tooLong.c_str(), nullptr, 0));
    EXPECT_REFUSED(2, "'mnuOpts' is NULL", abecs_cmd_mnu(link.comm, 0, nullptr, nullptr, 0));
    EXPECT_REFUSED(2, "Invalid numOpts: 0 (min: 1, max: 20)", abecs_cmd_mnu(link.comm, 0, nullptr, kTea, 0));
    EXPECT_REFUSED(2, "Invalid numOpts: 21 (min: 1, max: 20)", abecs_cmd_mnu(link.comm, 0, nullptr, kTea, 21));
    EXPECT_REFUSED(2, "Invalid character (0x0A) at position 0", abecs_cmd_mnu(link.comm, 0, "\n", kTea, 1));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Mnu, RefusesOptionsThatAreNotAlphanumeric) {
    Link link;
    for (const std::string text : {"PAY NOW", "CAF\xC9", "A-B", "A\rB", "123456789012345678901234."}) {
        char options[][25] = {"TEA", ""};
        text.copy(options[1], sizeof options[1]);
        EXPECT_REFUSED(2, "'Invalid menu option at index 1: " + text, abecs_cmd_mnu(link.comm, 0, nullptr, options, 2));
    }
}

// An array of its own size on the heap, so that reading on behind it would be seen.
TEST(Mnu, RefusesAnOptionWithoutEnd) {
    Link link;
    const auto options = std::make_unique<char[][25]>(1);
    std::memset(options[0], 'x', sizeof options[0]);
    EXPECT_REFUSED(2, "Field does not have enough room for data",
                   abecs_cmd_mnu(link.comm, 0, nullptr, options.get(), 1));
}

TEST(Mnu, ReadsTheChoice) {
    const auto reads = [](const std::string& data, uint32_t expected) {
        Link link;
        send(link);
        link.peer.response("MNU000" + data);
        uint32_t option = 99;
        EXPECT_EQ(link.call(abecs_cmd_mnu_response)(&option, nullptr), 0);
        EXPECT_EQ(option, expected);
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    };
    reads("006" + "804D 0002"_hex + "07", 7);
    reads("007" + "804D 0003"_hex + "201", 20);
    reads("012" + "804D 0002"_hex + "00" + "8050 0002"_hex + "11", 0);
}

TEST(Mnu, RefusesAnAnswerWithoutAChoice) {
    Link link;
    send(link);
    uint32_t option = 99;
    const auto refused = [&](const std::string& data, int16_t code, const char* detail) {
        link.peer.response("MNU000" + data);
        EXPECT_RAISES(code, detail, abecs_cmd_mnu_response(link.comm, &option, nullptr));
        EXPECT_EQ(option, 99U);
    };
    refused("", 12, "PP_VALUE not present in response");
    refused("000", 12, "PP_VALUE not present in response");
    refused("012" + "8050 0002"_hex + "11" + "804D 0002"_hex + "07", 12, "PP_VALUE not present in response");
    refused("005" + "804D 0001"_hex + "7", 6, "Buffer does not have enough data (requested: 2, available: 1)");
    refused("006" + "804D 0002"_hex + "0x", 6, "Invalid char (0x78) at index 1");
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "MNU");
}

}  // namespace
