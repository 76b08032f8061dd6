// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gdu.h"

#include <gtest/gtest.h>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

AbecsCmdGduMethod_E method(int32_t value) { return static_cast<AbecsCmdGduMethod_E>(value); }

TEST(Gdu, ReadsTheSerialNumber) {
    const struct {
        int32_t method;
        uint8_t index;
        const char* request;
        const char* response;
        int32_t stat;
        const char* ksn;
    } rows[] = {
        {2, 0, "GDU003200", "GDU000020FFFF9876543210E00001", 0, "FFFF9876543210E00001"},
        {3, 99, "GDU003399", "GDU00002030309876543210e03030", 0, "9876543210e03030"},
        {3, 1, "GDU003301", "GDU042", 42, "kept"},
        {3, 1, "GDU003301", "ERR010", 10, "kept"},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request(row.request).response(row.response);
        char out[21] = "kept";
        EXPECT_EQ(link.call(abecs_cmd_gdu)(method(row.method), row.index, out), row.stat) << row.response;
        EXPECT_STREQ(out, row.ksn) << row.response;
    }
}

TEST(Gdu, RefusesMalformedAnswers) {
    const struct {
        const char* response;
        int16_t code;
        const char* detail;
    } rows[] = {
        {"GDU00", 12, "Unrecognized response"},
        {"GTS000", 12, "Invalid RSP_ID (expected GDU, read: GTS)"},
        {"GDU000", 6, "Buffer does not have enough data (requested: 3, available: 0)"},
        {"GDU000019FFFF9876543210E00001", 12, "Invalid RSP_LEN1 (expected: 20, read: 19)"},
        {"GDU000021FFFF9876543210E000010", 12, "Invalid RSP_LEN1 (expected: 20, read: 21)"},
        {"GDU000020FFFF9876543210E000", 6, "Buffer does not have enough data (requested: 20, available: 18)"},
        {"GDU000020FFFF9876543210E0000z", 6, "Invalid data: 0z"},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("GDU003200").response(row.response);
        char out[21];
        EXPECT_RAISES(row.code, row.detail, abecs_cmd_gdu(link.comm, ABECS_CMD_GDU_METHOD_2, 0, out));
    }
}

TEST(Gdu, ChecksItsArgumentsAndLeavesTheHandleToTheLink) {
    char out[21] = "kept";
    EXPECT_REFUSED(4, "Invalid idx: 100 (maximum is 99)", abecs_cmd_gdu(nullptr, method(1), 100, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gdu(nullptr, method(1), 99, nullptr));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdGduMethod_E: 1", abecs_cmd_gdu(nullptr, method(1), 99, out));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdGduMethod_E: 4", abecs_cmd_gdu(nullptr, method(4), 99, out));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gdu(nullptr, method(2), 99, out));
    EXPECT_STREQ(out, "kept");
}

}  // namespace
