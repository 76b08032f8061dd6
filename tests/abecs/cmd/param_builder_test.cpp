// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/param_builder.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "abecs/cmd/builder.h"
#include "tests/support/malloc/exhaustion.h"
#include "tests/support/packets.h"
#include "tests/support/refused.h"

namespace {

struct Builder : abecs::ParamBuilder {};

Builder* make() {
    return abecs::new_builder<Builder>([](Builder* builder) { abecs::add_number(builder, ABECS_SPE_ID_ACQREF, 7); });
}

class ParamBuilder : public testing::Test {
protected:
    ~ParamBuilder() override { abecs::delete_builder(&builder_); }

    // The command that the builder would send.
    std::string command() {
        const support::Packet packet;
        const abecs::BuilderState state = abecs::save_builder(builder_->command);
        abecs_cmd_builder_set_cmd_id(builder_->command, "ABC");
        abecs_cmd_builder_build(builder_->command, packet.get());
        abecs::restore_builder(builder_->command, state);
        return packet.take();
    }

    Builder* builder_ = make();
};

TEST_F(ParamBuilder, TakesEachParameterOnceByItsName) {
    const std::map<int32_t, std::string> names{
        {0x02, "MTHDPIN"}, {0x03, "MTHDDAT"}, {0x04, "TAGLIST"}, {0x05, "EMVDATA"}, {0x07, "TRACKS"},
        {0x08, "OPNDIG"},  {0x09, "KEYIDX"},  {0x0A, "WKENC"},   {0x0C, "TIMEOUT"}, {0x0F, "DATAIN"},
        {0x10, "ACQREF"},  {0x11, "APPTYPE"}, {0x12, "AIDLIST"}, {0x13, "AMOUNT"},  {0x14, "CASHBACK"},
        {0x15, "TRNDATE"}, {0x16, "TRNTIME"}, {0x17, "GCXOPT"},  {0x18, "GOXOPT"},  {0x19, "FCXOPT"},
        {0x1A, "TRMPAR"},  {0x1B, "DSPMSG"},  {0x1C, "ARC"},     {0x1D, "IVCBC"},   {0x21, "TRNTYPE"},
        {0x22, "TRNCURR"}, {0x23, "PANMASK"}, {0x24, "PBKMOD"},  {0x25, "PBKEXP"},
    };
    abecs::reset_params(*builder_);
    for (const auto& [number, name] : names) {
        const auto id = static_cast<AbecsSpeId_E>(number);
        EXPECT_TRUE(abecs::add_bytes(builder_, id, "!", 1)) << name;
        const std::string before = command();
        EXPECT_REFUSED(3, "SPE_" + name + " already set", static_cast<void>(abecs::add_bytes(builder_, id, "?", 1)));
        EXPECT_EQ(command(), before);
    }
}

TEST_F(ParamBuilder, WhatHasNoRoomIsNotAdded) {
    const std::string bytes(995, 'b');
    abecs::add_bytes(builder_, ABECS_SPE_ID_DATAIN, bytes.data(), 995);
    const std::string before = command();
    EXPECT_RAISES(6, "No enough space in buffer (available: 0, requested: 2)",
                  abecs::add_bytes(builder_, ABECS_SPE_ID_EMVDATA, bytes.data(), 995));
    EXPECT_FALSE(abecs::has_param(*builder_, ABECS_SPE_ID_EMVDATA));
    EXPECT_EQ(command(), before);
    EXPECT_TRUE(abecs::add_bytes(builder_, ABECS_SPE_ID_EMVDATA, bytes.data(), 4));
}

TEST_F(ParamBuilder, AFailureOfMemoryLeavesItAsItWas) {
    const std::string before = command();
    for (const support::Raise raise : support::kBothRaises) {
        abecs::reset_params(*builder_);
        abecs::add_number(builder_, ABECS_SPE_ID_ACQREF, 7);
        size_t n = 1;
        for (; support::fails(n, raise, [&] { abecs::add_number(builder_, ABECS_SPE_ID_TIMEOUT, 9); }); ++n) {
            EXPECT_EQ(command(), before) << n;
            EXPECT_FALSE(abecs::has_param(*builder_, ABECS_SPE_ID_TIMEOUT));
        }
        EXPECT_GT(n, 4U) << "the parameter is made, and its id stored";
        EXPECT_TRUE(abecs::has_param(*builder_, ABECS_SPE_ID_TIMEOUT));
    }
}

TEST_F(ParamBuilder, MakingOneLeavesNothingBehindWhenItFails) {
    EXPECT_GT(support::allocations_of(support::make<make, abecs::delete_builder<Builder>>), 10U);
    EXPECT_RAISES(1, "the reset's own", abecs::new_builder<Builder>([](Builder*) {
                      kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "[KOR_RESULT_RUNTIME_ERROR] the reset's own");
                  }));
}

}  // namespace
