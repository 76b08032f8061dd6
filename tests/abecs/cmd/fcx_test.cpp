// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/fcx.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

class Fcx : public support::BuiltCommand<AbecsCmdFcxBuilder, abecs_cmd_fcx_builder_delete, abecs_cmd_fcx,
                                         abecs_cmd_fcx_response> {
protected:
    Fcx() { builder_ = abecs_cmd_fcx_builder_new("1999"); }
};

TEST_F(Fcx, SendsWhatWasSetInTheOrderOfTheCalls) {
    const AbecsEmvData emvData{{0x91, 0x02}, 2};
    const AbecsTagList tagList{{0x9F, 0x26}, 2};
    set(abecs_cmd_fcx_builder_timeout, 0x16);
    set(abecs_cmd_fcx_builder_taglist, &tagList);
    set(abecs_cmd_fcx_builder_arc, "0A");
    set(abecs_cmd_fcx_builder_emvdata, &emvData);
    expect_sent("FCX031" + "0019 0004 31393939 000C 0001 16 0004 0002 9F26 001C 0002 3041 0005 0002 9102"_hex);
}

TEST_F(Fcx, NeedsTheResponseCodeOfAnAcquirerThatWasReached) {
    Link link;
    for (const char first : std::string("0123456789")) {
        const std::string options = first + std::string("000");
        set(abecs_cmd_fcx_builder_reset, options.c_str());
        if (first < '2') {
            EXPECT_REFUSED(2, "'SPE_ARC' was not defined", abecs_cmd_fcx(link.comm, builder_));
            set(abecs_cmd_fcx_builder_arc, "Z1");
            expect_sent("FCX014" + "0019 0004"_hex + options + "001C 0002"_hex + "Z1");
        } else {
            refused(3, "SPE_ARC is not required", abecs_cmd_fcx_builder_arc, "00");
            expect_sent("FCX008" + "0019 0004"_hex + options);
        }
    }
}

TEST_F(Fcx, ChecksEveryArgumentInOrder) {
    set(abecs_cmd_fcx_builder_reset, "2000");
    refused(2, "'fcxOpt' is NULL", abecs_cmd_fcx_builder_reset, nullptr);
    refused(2, "'fcxOpt' is too long (maximum: 4, requested: 5)", abecs_cmd_fcx_builder_reset, "0000x");
    refused(2, "fcxOpt: invalid char (0x20) at index 0", abecs_cmd_fcx_builder_reset, " 000");
    refused(2, "'arc' is NULL", abecs_cmd_fcx_builder_arc, nullptr);
    refused(2, "Invalid length of 'arc': 3 (expected: 2)", abecs_cmd_fcx_builder_arc, "0-0");
    refused(2, "arc[1] is invalid: 0x2D", abecs_cmd_fcx_builder_arc, "0-");
    refused(2, "arc[0] is invalid: 0xE9", abecs_cmd_fcx_builder_arc, "\xE9-");
    expect_sent("FCX008" + "0019 0004 32303030"_hex);
    EXPECT_RAISES(2, "'fcxOpt' is too short (minimum: 4, requested: 0)", abecs_cmd_fcx_builder_new(""));
}

}  // namespace
