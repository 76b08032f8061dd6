// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/packet.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

#include "quorvel/abecs/rsp_stat.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

using namespace std::string_literals;
using namespace support;

namespace {

constexpr uint8_t kRaw[]{0xC0, 0xDE};

// Those that packets and parameters have alike.
#define FIELD_FUNCTIONS(kind)                                                                                     \
    std::make_tuple(abecs_##kind##_write_byte, abecs_##kind##_write_field_n, abecs_##kind##_write_field_a,        \
                    abecs_##kind##_write_field_a_cdata, abecs_##kind##_write_field_s,                             \
                    abecs_##kind##_write_field_s_cdata, abecs_##kind##_write_field_h,                             \
                    abecs_##kind##_write_field_h_raw, abecs_##kind##_write_field_x, abecs_##kind##_write_field_b, \
                    abecs_##kind##_read_byte, abecs_##kind##_read_field_n, abecs_##kind##_read_field_a,           \
                    abecs_##kind##_read_field_s, abecs_##kind##_read_field_h, abecs_##kind##_read_field_h_raw,    \
                    abecs_##kind##_read_field_x, abecs_##kind##_read_field_b, abecs_##kind##_available_read)

// Each function works on the object's bytes, with its arguments in their places.
template <typename Object, typename Functions>
void expect_field_functions(const Object& object, const Functions& functions) {
    const auto& [write_byte, write_n, write_a, write_a_cdata, write_s, write_s_cdata, write_h, write_h_raw, write_x,
                 write_b, read_byte, read_n, read_a, read_s, read_h, read_h_raw, read_x, read_b, available] = functions;
    const std::string written =
        "\x01"
        "012a\r b \xE9\r s 30ABC0DEAB040";
    for (const bool taken : {true, false}) {
        write_byte(object, 0x01);
        write_n(object, 12, 3);
        write_a(object, "a\r", 3, true);
        write_a_cdata(object, "b", 1, 2, false);
        write_s(object, "\xE9\r", 3, true);
        write_s_cdata(object, "s", 1, 2, false);
        write_h(object, "ab", 4);
        write_h_raw(object, kRaw, 2, 4);
        write_x(object, 0x4142, 2);
        write_b(object, "040", 3);
        EXPECT_EQ(available(object), written.size());
        if (taken) { EXPECT_EQ(object.take(), written); }
    }
    char text[5];
    uint8_t raw[2];
    EXPECT_EQ(read_byte(object), 0x01);
    EXPECT_EQ(read_n(object, 3), 12U);
    EXPECT_STREQ(read_a(object, text, sizeof text, 3, true), "a\r");
    EXPECT_STREQ(read_a(object, text, sizeof text, 2, false), "b");
    EXPECT_STREQ(read_s(object, text, sizeof text, 3, true), "\xE9\r");
    EXPECT_EQ(read_b(object, nullptr, 0, 2), 2U);
    EXPECT_STREQ(read_h(object, text, sizeof text, 4), "AB");
    EXPECT_EQ(read_h_raw(object, raw, sizeof raw, 4), 2U);
    EXPECT_EQ(raw[0], 0xC0);
    EXPECT_EQ(read_x(object, 2), 0x4142U);
    EXPECT_EQ(read_b(object, text, sizeof text, 3), 3U);
    EXPECT_EQ(std::string(text, 3), "040");
    EXPECT_EQ(raised_by([&, read = read_byte] { read(object); }), too_full(1, 0));
}

TEST(FieldFunctions, OfPacketsAndParametersWorkOnTheirBytes) {
    expect_field_functions(Packet(), FIELD_FUNCTIONS(packet));
    expect_field_functions(Param(), FIELD_FUNCTIONS(param));
    const Packet packet;
    abecs_packet_write_field_h_cdata(packet, "cdef", 2, 4);
    abecs_packet_write_field_b(packet, "040", 3);
    char digits[5];
    EXPECT_STREQ(abecs_packet_read_field_h(packet, digits, sizeof digits, 4), "CD");
    EXPECT_EQ(abecs_packet_read_rsp_stat(packet), ABECS_RSP_STAT_ST_INTERR);
}

TEST(Packet, HoldsTwoThousandAndFortyFourBytes) {
    const Packet packet(std::string(2044, 'x'));
    EXPECT_EQ(abecs_packet_available_read(packet), 2044U);
    EXPECT_EQ(raised_by([&] { abecs_packet_write_byte(packet, 0); }), too_full(1, 0));
    abecs_packet_clear(packet);
    EXPECT_EQ(abecs_packet_available_read(packet), 0U);
}

TEST(Packet, AParameterIsWrittenAsIdLengthAndData) {
    const Packet packet;
    const Param param;
    param.fill(6, "123456");
    abecs_packet_write_param(packet, param);
    EXPECT_EQ(packet.take(),
              "\0\x06\0\x06"s
              "123456");
    abecs_packet_write_param(packet, param);
    EXPECT_EQ(packet.take(), "\0\x06\0\0"s) << "its data were consumed, its id was not";
    param.fill(0x1234, std::string(690, 'x'));
    abecs_param_read_field_b(param, nullptr, 0, 690);
    abecs_param_write_field_b(param, (std::string(308, 'e') + "begin").c_str(), 313);
    abecs_packet_write_param(packet, param);
    EXPECT_EQ(packet.take(), "\x12\x34\x01\x39" + std::string(308, 'e') + "begin") << "across the storage's end";
    packet.fill(std::string(2036, 'x'));
    param.fill(1, "12345");
    EXPECT_EQ(raised_by([&] { abecs_packet_write_param(packet, param); }), too_full(5, 4));
    EXPECT_EQ(param.take(), "12345");
}

TEST(Packet, ReadsParametersBack) {
    const Packet packet(
        "\x80\x01\0\x03"s
        "abc"
        "\x93\x63\0\0"s);
    const Param param;
    param.fill(7, "old");
    EXPECT_EQ(abecs_packet_read_param(packet, param), param);
    EXPECT_EQ(abecs_param_get_id(param), 0x8001);
    EXPECT_EQ(param.take(), "abc");
    EXPECT_EQ(abecs_packet_read_param(packet, param), param);
    EXPECT_EQ(abecs_param_get_id(param), 0x9363);
    EXPECT_EQ(param.take(), "");
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_packet_read_param(packet, nullptr));
    packet.fill("abc");
    EXPECT_EQ(raised_by([&] { abecs_packet_read_param(packet, param); }), too_few(2, 1));
}

TEST(Packet, AParameterLongerThanThePacketIsMalformed) {
    const Packet packet(
        "\x80\x02\0\x0A"s
        "abcd");
    const Param param;
    param.fill(7, "old");
    EXPECT_RAISES(kProtocol, "Malformed parameter (expected data length: 10, available: 4)",
                  abecs_packet_read_param(packet, param));
    EXPECT_EQ(abecs_param_get_id(param), 0x8002);
    EXPECT_EQ(param.take(), "");
    EXPECT_EQ(packet.take(), "abcd") << "id and length were consumed";
    packet.fill("\x80\x02\x03\xE8" + std::string(1000, 'x'));
    EXPECT_EQ(raised_by([&] { abecs_packet_read_param(packet, param); }), too_full(1000, 999));
    EXPECT_EQ(abecs_packet_available_read(packet), 1000U);
}

TEST(Packet, ReadsANotificationsText) {
    char text[33];
    const auto reads = [&](const std::string& content, const std::string& expected) {
        EXPECT_EQ(abecs_packet_read_notification(Packet(content), text), expected);
    };
    const auto refused = [&](const std::string& content, const Raised& error) {
        const Packet packet(content);
        const ReturningRaises raises;
        EXPECT_EQ(abecs_packet_read_notification(packet, text), text);
        EXPECT_EQ(raises.all(), std::vector{error});
    };
    reads("000005SALDO", "SALDO");
    reads("000032" + std::string(32, '\xC7'), std::string(32, '\xC7'));
    const Packet packet("000005SALDO!");
    EXPECT_EQ(abecs_packet_read_notification(packet, nullptr), nullptr);
    EXPECT_EQ(packet.take(), "!");
    refused("012", error(kProtocol, "NTM with invalid RSP_STAT: ABECS_RSP_STAT_ST_TIMEOUT"));
    refused("000033" + std::string(33, 'x'), error(kArgument, "sizeTo (33) is not enough to store field data"));
}

TEST(Packet, ASavedStateMakesBytesReadableAgain) {
    const Packet packet("abcdef");
    KorBufferState state;
    EXPECT_EQ(abecs_packet_save_state(packet, &state), &state);
    abecs_packet_read_field_b(packet, nullptr, 0, 3);
    abecs_packet_set_state(packet, &state);
    EXPECT_EQ(packet.take(), "abcdef");
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_packet_save_state(packet, nullptr));
    EXPECT_RAISES(kArgument, "'state' is NULL", abecs_packet_set_state(packet, nullptr));
}

TEST(Param, ClearingKeepsTheIdAndResettingDoesNot) {
    const Param param;
    EXPECT_EQ(abecs_param_get_id(param), 0);
    param.fill(0xABCD, std::string(999, 'x'));
    EXPECT_EQ(raised_by([&] { abecs_param_write_byte(param, 0); }), too_full(1, 0));
    abecs_param_clear_data(param);
    EXPECT_EQ(abecs_param_get_id(param), 0xABCD);
    EXPECT_EQ(abecs_param_available_read(param), 0U);
    abecs_param_write_byte(param, 1);
    abecs_param_reset(param);
    EXPECT_EQ(abecs_param_get_id(param), 0);
    EXPECT_EQ(abecs_param_available_read(param), 0U);
}

}  // namespace
