// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/builder.h"

#include <gtest/gtest.h>
#include <string>

#include "abecs/cmd/builder.h"
#include "tests/support/packets.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Packet;

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
    EXPECT_EQ(abecs_param_get_id(param_), 0);
    EXPECT_EQ(abecs_param_available_read(param_), 0U);
    add(7, 0);
    EXPECT_EQ(build(), "XYZ014" + "0006 0006 67 67 67 67 67 67 0007 0000"_hex);
}

TEST_F(Builder, FillsOneBlockToTheLastByte) {
    add(1, 495);
    add(2, 496);
    EXPECT_EQ(build(), "XYZ999" + encoded(1, 495) + encoded(2, 496));
}

TEST_F(Builder, ASmallParameterGoesBackToTheFirstBlock) {
    add(1, 600);
    add(2, 500);
    add(3, 100);
    EXPECT_EQ(build(), "XYZ708" + encoded(1, 600) + encoded(3, 100) + "504" + encoded(2, 500));
}

TEST_F(Builder, NoRoomLeavesTheBlocksAsTheyWere) {
    add(1, 900);
    add(2, 900);
    for (const size_t size : {92U, 96U, 995U}) {
        const std::string data(size, 'x');
        abecs_param_reset(param_);
        abecs_param_write_field_b(param_, data.data(), data.size());
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_builder_add_param(builder_, param_); }),
                  support::error(KOR_RESULT_IO_ERROR,
                                 "No enough space in buffer (available: 91, requested: " + std::to_string(size) + ")"));
    }
    EXPECT_EQ(build(), "XYZ904" + encoded(1, 900) + "904" + encoded(2, 900));
}

TEST_F(Builder, BuildAndResetTakeIdAndParametersAway) {
    const Packet packet;
    for (const bool built : {true, false}) {
        add(1, 600);
        add(2, 600);
        built ? static_cast<void>(build()) : abecs_cmd_builder_reset(builder_);
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Builder does not have assigned a command id",
                      abecs_cmd_builder_build(builder_, packet.get()));
        abecs_cmd_builder_set_cmd_id(builder_, "ABC");
        EXPECT_EQ(build(), "ABC") << "without parameters there is no length";
        abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    }
}

TEST_F(Builder, RestoredStateBuildsTheSameAgain) {
    add(1, 600);
    add(2, 600);
    const abecs::BuilderState state = abecs::save_builder(builder_);
    const std::string first = build();
    abecs::restore_builder(builder_, state);
    abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    EXPECT_EQ(build(), first);
}

TEST_F(Builder, ChecksItsArguments) {
    EXPECT_RAISES(2, "'cmdId' is NULL", abecs_cmd_builder_set_cmd_id(builder_, nullptr));
    for (const char* id : {"", "GI", "GINX"}) {
        EXPECT_RAISES(2, std::string("Invalid 'cmdId': ") + id, abecs_cmd_builder_set_cmd_id(builder_, id));
    }
    EXPECT_RAISES(2, "'param' is NULL", abecs_cmd_builder_add_param(builder_, nullptr));
    EXPECT_RAISES(2, "'out' is NULL", abecs_cmd_builder_build(builder_, nullptr));
    add(1, 1);
    abecs_cmd_builder_set_cmd_id(builder_, "X\tZ");
    const Packet packet;
    const char* const badId = "Invalid character (0x09) at position 1";
    EXPECT_RAISES(2, badId, abecs_cmd_builder_build(builder_, packet.get()));
    const support::ReturningRaises handler;
    EXPECT_EQ(abecs_cmd_builder_build(builder_, packet.get()), nullptr);
    EXPECT_EQ(handler.all(), support::errors(2, {badId}));
    abecs_cmd_builder_set_cmd_id(builder_, "XYZ");
    EXPECT_EQ(build(), "XYZ005" + encoded(1, 1));
}

}  // namespace
