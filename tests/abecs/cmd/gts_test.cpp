// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gts.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

TEST(Gts, ReadsTheVersion) {
    const struct {
        uint8_t index;
        const char* request;
        const char* response;
        int32_t stat;
        const char* version;
    } rows[] = {
        {0, "GTS00200", "GTS0000100123456789", 0, "0123456789"},
        {9, "GTS00209", "GTS000010 V1       ", 0, " V1"},
        {99, "GTS00299", "GTS000010          ", 0, ""},
        {1, "GTS00201", "GTS0110100123456789", 11, ""},
        {1, "GTS00201", "ERR010", 10, ""},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request(row.request).response(row.response);
        char out[11] = "stale text";
        EXPECT_EQ(link.call(abecs_cmd_gts)(row.index, out), row.stat) << row.response;
        EXPECT_STREQ(out, row.version) << row.response;
    }
}

TEST(Gts, RefusesMalformedAnswers) {
    const struct {
        const char* response;
        int16_t code;
        const char* detail;
    } rows[] = {
        {"GTS00", 12, "Unrecognized response"},
        {"TLI000", 12, "Invalid RSP_ID (expected GTS, read: TLI)"},
        {"GTS000", 6, "Buffer does not have enough data (requested: 3, available: 0)"},
        {"GTS0000090123456789", 12, "Invalid RSP_LEN1 (expected: 10, read: 9)"},
        {"GTS00001101234567890", 12, "Invalid RSP_LEN1 (expected: 10, read: 11)"},
        {"GTS000010012345678", 6, "Buffer does not have enough data (requested: 10, available: 9)"},
        {"GTS0000100123\r56789", 6, "Invalid character (0x0D) at position 4"},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request("GTS00201").response(row.response);
        char out[11];
        EXPECT_RAISES(row.code, row.detail, abecs_cmd_gts(link.comm, 1, out));
    }
}

TEST(Gts, LeavesTheHandleToTheLink) {
    char out[11] = "kept";
    EXPECT_REFUSED(4, "Invalid acqIdx: 100 (maximum is 99)", abecs_cmd_gts(nullptr, 100, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gts(nullptr, 99, nullptr));
    EXPECT_RAISES(2, "'pinpad' is NULL", abecs_cmd_gts(nullptr, 99, out));
    EXPECT_STREQ(out, "kept");
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gts(nullptr, 99, out));
}

}  // namespace
