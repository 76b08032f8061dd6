// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/param.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

using support::Param;

namespace {

constexpr uint8_t kRaw[]{0xC0, 0xDE};

TEST(Param, EveryFieldFunctionWorksOnTheParametersData) {
    const Param param;
    abecs_param_write_byte(param, 0x01);
    abecs_param_write_field_n(param, 12, 3);
    abecs_param_write_field_a(param, "a\r", 3, true);
    abecs_param_write_field_a_cdata(param, "b", 1, 2, false);
    abecs_param_write_field_s(param, "\xE9\r", 3, true);
    abecs_param_write_field_s_cdata(param, "s", 1, 2, false);
    abecs_param_write_field_h(param, "ab", 4);
    abecs_param_write_field_h_raw(param, kRaw, 2, 4);
    abecs_param_write_field_x(param, 0x4142, 2);
    abecs_param_write_field_b(param, "xyz", 3);
    char text[5];
    uint8_t raw[2];
    EXPECT_EQ(abecs_param_available_read(param), 27U);
    EXPECT_EQ(abecs_param_read_byte(param), 0x01);
    EXPECT_EQ(abecs_param_read_field_n(param, 3), 12U);
    EXPECT_STREQ(abecs_param_read_field_a(param, text, sizeof text, 3, true), "a\r");
    EXPECT_STREQ(abecs_param_read_field_a(param, text, sizeof text, 2, false), "b");
    EXPECT_STREQ(abecs_param_read_field_s(param, text, sizeof text, 3, true), "\xE9\r");
    EXPECT_STREQ(abecs_param_read_field_s(param, text, sizeof text, 2, false), "s");
    EXPECT_STREQ(abecs_param_read_field_h(param, text, sizeof text, 4), "AB");
    EXPECT_EQ(abecs_param_read_field_h_raw(param, raw, sizeof raw, 4), 2U);
    EXPECT_EQ(raw[0], 0xC0);
    EXPECT_EQ(abecs_param_read_field_x(param, 2), 0x4142U);
    EXPECT_EQ(abecs_param_read_field_b(param, text, sizeof text, 3), 3U);
    EXPECT_EQ(std::string(text, 3), "xyz");
}

TEST(Param, ClearingKeepsTheIdAndResettingDoesNot) {
    const Param param;
    EXPECT_EQ(abecs_param_get_id(param), 0);
    param.fill(0xABCD, std::string(999, 'x'));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)",
                  abecs_param_write_byte(param, 0));
    abecs_param_clear_data(param);
    EXPECT_EQ(abecs_param_get_id(param), 0xABCD);
    EXPECT_EQ(abecs_param_available_read(param), 0U);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)",
                  abecs_param_read_byte(param));
    abecs_param_write_byte(param, 1);
    abecs_param_reset(param);
    EXPECT_EQ(abecs_param_get_id(param), 0);
    EXPECT_EQ(abecs_param_available_read(param), 0U);
}

}  // namespace
