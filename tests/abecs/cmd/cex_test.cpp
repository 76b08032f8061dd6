// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cex.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/abecs/cmd/param_map.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using Items = support::ParamMap::Items;

const std::string kOpt = "0006 0006"_hex + "111111";

class Cex : public testing::Test {
protected:
    // Exactly these bytes, nothing behind them.
    void put_event(std::string_view text) {
        bytes_.assign(text.begin(), text.end());
        const AbecsRspParamValue value{static_cast<uint32_t>(bytes_.size()), bytes_.empty() ? nullptr : bytes_.data(),
                                       false};
        EXPECT_NO_RAISE(abecs_rsp_param_map_put(map_.get(), 0x8040, &value, false));
    }

    std::vector<uint8_t> bytes_;
    support::ParamMap map_;
    Link link_;
};

TEST_F(Cex, SendsWhatIsGiven) {
    const uint8_t zero = 0;
    const uint8_t most = 255;
    const uint8_t mask[] = {6, 4};
    const uint8_t wide[] = {0, 99};
    const auto sends = [](const uint8_t* timeout, const uint8_t* panMask, const std::string& data) {
        Link link;
        link.peer.request("CEX" + data);
        link.call(abecs_cmd_cex)("111111", timeout, panMask);
    };
    sends(nullptr, nullptr, "010" + kOpt);
    sends(&zero, nullptr, "015" + kOpt + "000C 0001 00"_hex);
    sends(nullptr, mask, "018" + kOpt + "0023 0004"_hex + "0604");
    sends(&most, wide, "023" + kOpt + "000C 0001 FF 0023 0004"_hex + "0099");
}

TEST_F(Cex, RefusesWhatCannotBeSent) {
    const auto refused = [&](const char* detail, const char* option, const uint8_t* mask) {
        EXPECT_REFUSED(2, detail, abecs_cmd_cex(link_.comm, option, nullptr, mask));
    };
    const uint8_t leading[] = {100, 0};
    const uint8_t trailing[] = {0, 100};
    for (const char* option : {static_cast<const char*>(nullptr), "", "11111", "1111111"}) {
        refused("'cexOpt' is not valid!", option, nullptr);
    }
    refused("Invalid character (0x0D) at position 5", "11111\r", nullptr);
    refused("Number length (3) is greater than field length (2)", "111111", leading);
    refused("Number length (3) is greater than field length (2)", "111111", trailing);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
}

TEST_F(Cex, KeepsTheAnswerAsTexts) {
    link_.peer.request("CEX010" + kOpt)
        .response("CEX000077" + "8040 0002"_hex + "90" + "8041 0020"_hex + "B4111******1111^DOE/J^2512101000"
                  + "8042 001B"_hex + "4111******1111=251210100000" + "8043 0000"_hex);
    link_.call(abecs_cmd_cex)("111111", nullptr, nullptr);
    EXPECT_EQ(link_.call(abecs_cmd_cex_response)(map_.get(), nullptr), 0);
    EXPECT_EQ(map_.items(), (Items{{0x8040, "90"},
                                   {0x8041, "B4111******1111^DOE/J^2512101000"},
                                   {0x8042, "4111******1111=251210100000"},
                                   {0x8043, ""}}));
    EXPECT_EQ(abecs_cmd_cex_response_get_event(map_.get()), ABECS_PP_EVENT_MAGNETIC_CARD);
    EXPECT_STREQ(abecs_cmd_cex_response_get_trk1inc(map_.get()), "B4111******1111^DOE/J^2512101000");
    EXPECT_STREQ(abecs_cmd_cex_response_get_trk2inc(map_.get()), "4111******1111=251210100000");
    EXPECT_STREQ(abecs_cmd_cex_response_get_trk3inc(map_.get()), "");
}

TEST_F(Cex, KnowsEveryEvent) {
    const std::set<int> known{0, 2, 3, 4, 5, 6, 7, 8, 13, 90, 91, 92, 93, 94};
    for (int code = 0; code < 100; ++code) {
        const std::string text{static_cast<char>('0' + code / 10), static_cast<char>('0' + code % 10)};
        put_event(text);
        if (known.contains(code)) {
            int32_t event = -99;
            EXPECT_NO_RAISE(event = abecs_cmd_cex_response_get_event(map_.get()));
            EXPECT_EQ(event, code);
        } else {
            EXPECT_RAISES(12, "Invalid code for PP_EVENT: " + std::to_string(code),
                          abecs_cmd_cex_response_get_event(map_.get()));
        }
    }
}

// As the C library reads a decimal number: what stands behind it does not count, and without digits it is 0.
TEST_F(Cex, TakesAnEventOfAnyLength) {
    const auto reads = [&](std::string_view text, int32_t expected) {
        put_event(text);
        int32_t event = -99;
        EXPECT_NO_RAISE(event = abecs_cmd_cex_response_get_event(map_.get()));
        EXPECT_EQ(event, expected) << text;
    };
    reads("0000000000000000090", 90);
    reads(std::string(998, '0') + "7", 7);
    reads(std::string(997, ' ') + "94", 94);
    reads(" \t\n\v\f\r+0013", 13);
    reads("-0", 0);
    reads("91x", 91);
    reads(std::string_view("8\0001", 3), 8);
    reads("", 0);
    reads("F1", 0);
}

TEST_F(Cex, ReadersTellWhatIsMissingOrNoEvent) {
    EXPECT_EQ(abecs_cmd_cex_response_get_trk1inc(map_.get()), nullptr);
    const auto refused = [&](const std::string& detail) {
        EXPECT_RAISES(12, detail, abecs_cmd_cex_response_get_event(map_.get()));
        const support::ReturningRaises handler;
        EXPECT_EQ(static_cast<int32_t>(abecs_cmd_cex_response_get_event(map_.get())), -1);
        EXPECT_EQ(handler.all().size(), 1U);
    };
    refused("Mandatory PP_EVENT not found");
    put_event("4294967296");
    refused("Invalid code for PP_EVENT: 2147483647");
    put_event("-1");
    refused("Invalid code for PP_EVENT: -1");
    put_event(std::string(500, '0') + std::string(499, '9'));
    refused("Invalid code for PP_EVENT: 2147483647");
    put_event("-" + std::string(998, '9'));
    refused("Invalid code for PP_EVENT: -2147483647");
}

}  // namespace
