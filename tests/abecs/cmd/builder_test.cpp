// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/builder.h"

#include "abecs/cmd/param_builder.h"
#include "tests/abecs/cmd/commands.h"
#include "tests/support/malloc/exhaustion.h"
#include "tests/support/packets.h"

namespace {

using namespace support;

class Builder : public testing::Test {
protected:
    Builder() { abecs_cmd_builder_set_cmd_id(builder_, "XYZ"); }
    ~Builder() override {
        abecs_param_delete(&param_);
        abecs_cmd_builder_delete(&builder_);
    }

    void add(uint16_t id, size_t size) {
        const std::string data(size, static_cast<char>('a' + id));
        abecs_param_set_id(param_, id);
        abecs_param_write_field_b(param_, data.data(), data.size());
        EXPECT_NO_RAISE(abecs_cmd_builder_add_param(builder_, param_));
    }

    static std::string encoded(uint16_t id, size_t size) {
        std::string bytes{'\0', static_cast<char>(id), static_cast<char>(size >> 8), static_cast<char>(size)};
        return bytes + std::string(size, static_cast<char>('a' + id));
    }

    std::string build() {
        const Packet packet("what stood here before");
        EXPECT_NO_RAISE(abecs_cmd_builder_build(builder_, packet.get()));
        return packet.take();
    }

    AbecsCmdBuilder* builder_ = abecs_cmd_builder_new();
    AbecsParam* param_ = abecs_param_new();
};

TEST_F(Builder, LaysParametersOutInBlocks) {
    add(6, 6);
    add(7, 0);
    EXPECT_EQ(build(), "XYZ014" + "0006 0006 67 67 67 67 67 67 0007 0000"_hex);
    abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    add(1, 495);
    add(2, 496);
    EXPECT_EQ(build(), "XYZ999" + encoded(1, 495) + encoded(2, 496));
}

TEST_F(Builder, ASmallParameterGoesBackToTheFirstBlock) {
    add(1, 600);
    add(2, 500);
    add(3, 100);
    const abecs::BuilderState state = abecs::save_builder(builder_);
    const std::string expected = "XYZ708" + encoded(1, 600) + encoded(3, 100) + "504" + encoded(2, 500);
    EXPECT_EQ(build(), expected);
    abecs::restore_builder(builder_, state);
    abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    EXPECT_EQ(build(), expected);
}

TEST_F(Builder, NoRoomLeavesTheBlocksAsTheyWere) {
    add(1, 900);
    add(2, 900);
    for (const size_t size : {92U, 96U, 995U}) {
        const std::string data(size, 'x');
        abecs_param_reset(param_);
        abecs_param_write_field_b(param_, data.data(), data.size());
        EXPECT_EQ(raised_by([&] { abecs_cmd_builder_add_param(builder_, param_); }), too_full(size, 91));
    }
    EXPECT_EQ(build(), "XYZ904" + encoded(1, 900) + "904" + encoded(2, 900));
}

TEST_F(Builder, BuildAndResetTakeIdAndParametersAway) {
    const Packet packet;
    for (const bool built : {true, false}) {
        add(1, 600);
        add(2, 600);
        built ? static_cast<void>(build()) : abecs_cmd_builder_reset(builder_);
        EXPECT_RAISES(kState, "Builder does not have assigned a command id",
                      abecs_cmd_builder_build(builder_, packet.get()));
        abecs_cmd_builder_set_cmd_id(builder_, "ABC");
        EXPECT_EQ(build(), "ABC") << "without parameters there is no length";
        abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    }
}

TEST_F(Builder, ChecksItsArguments) {
    for (const char* id : {"GI", "GINX"}) {
        EXPECT_RAISES(kArgument, std::string("Invalid 'cmdId': ") + id, abecs_cmd_builder_set_cmd_id(builder_, id));
    }
    EXPECT_RAISES(kArgument, "'param' is NULL", abecs_cmd_builder_add_param(builder_, nullptr));
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_cmd_builder_build(builder_, nullptr));
    add(1, 1);
    abecs_cmd_builder_set_cmd_id(builder_, "X\tZ");
    const Packet packet;
    EXPECT_REFUSED(kArgument, "Invalid character (0x09) at position 1",
                   abecs_cmd_builder_build(builder_, packet.get()));
    abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    EXPECT_EQ(build(), "XYZ005" + encoded(1, 1));
}

struct Made : abecs::ParamBuilder {};

Made* make_builder() {
    return abecs::new_builder<Made>([](Made* builder) { abecs::add_number(builder, ABECS_SPE_ID_ACQREF, 7); });
}

class ParamBuilder : public testing::Test {
protected:
    ~ParamBuilder() override { abecs::delete_builder(&builder_); }

    // The command that the builder would send.
    std::string command() {
        const Packet packet;
        const abecs::BuilderState state = abecs::save_builder(builder_->command);
        abecs_cmd_builder_set_cmd_id(builder_->command, "ABC");
        abecs_cmd_builder_build(builder_->command, packet.get());
        abecs::restore_builder(builder_->command, state);
        return packet.take();
    }

    Made* builder_ = make_builder();
};

TEST_F(ParamBuilder, TakesEachParameterOnceByItsName) {
    const std::map<int32_t, std::string> names{{0x02, "MTHDPIN"}, {0x0A, "WKENC"}, {0x13, "AMOUNT"}, {0x25, "PBKEXP"}};
    abecs::reset_params(*builder_);
    for (const auto& [number, name] : names) {
        const auto id = static_cast<AbecsSpeId_E>(number);
        EXPECT_TRUE(abecs::add_bytes(builder_, id, "!", 1)) << name;
        const std::string before = command();
        EXPECT_REFUSED(kState, "SPE_" + name + " already set",
                       static_cast<void>(abecs::add_bytes(builder_, id, "?", 1)));
        EXPECT_EQ(command(), before);
    }
}

TEST_F(ParamBuilder, AFailureOfMemoryLeavesItAsItWas) {
    const std::string before = command();
    for (const Raise raise : kBothRaises) {
        abecs::reset_params(*builder_);
        abecs::add_number(builder_, ABECS_SPE_ID_ACQREF, 7);
        size_t n = 1;
        for (; fails(n, raise, [&] { abecs::add_number(builder_, ABECS_SPE_ID_TIMEOUT, 9); }); ++n) {
            EXPECT_EQ(command(), before) << n;
            EXPECT_FALSE(abecs::has_param(*builder_, ABECS_SPE_ID_TIMEOUT));
        }
        EXPECT_GE(n, 4U) << "the parameter is made, and its id stored";
        EXPECT_TRUE(abecs::has_param(*builder_, ABECS_SPE_ID_TIMEOUT));
    }
}

TEST_F(ParamBuilder, MakingOneLeavesNothingBehindWhenItFails) {
    EXPECT_GT(allocations_of(make<make_builder, abecs::delete_builder<Made>>), 6U);
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "the reset's own", abecs::new_builder<Made>([](Made*) {
                      kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "[KOR_RESULT_RUNTIME_ERROR] the reset's own");
                  }));
}

}  // namespace
