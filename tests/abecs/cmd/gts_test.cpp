// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gts.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/answers.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

TEST(Gts, ReadsTheVersion) {
    const auto reads = [](const char* request, uint8_t index, const char* response, int32_t stat, const char* version) {
        Link link;
        link.peer.request(request).response(response);
        char out[11] = "stale text";
        EXPECT_EQ(link.call(abecs_cmd_gts)(index, out), stat) << response;
        EXPECT_STREQ(out, version) << response;
    };
    reads("GTS00200", 0, "GTS0000100123456789", 0, "0123456789");
    reads("GTS00209", 9, "GTS000010 V1       ", 0, " V1");
    reads("GTS00299", 99, "GTS000010          ", 0, "");
    reads("GTS00201", 1, "GTS0110100123456789", 11, "");
    reads("GTS00201", 1, "ERR010", 10, "");
}

TEST(Gts, RefusesMalformedAnswers) {
    const auto refused = [](const std::string& answer, int16_t code, const char* detail, const char* version) {
        char out[11] = "stale text";
        support::expect_bad_answers("GTS00201", [&](AbecsComm* link) { abecs_cmd_gts(link, 1, out); },
                                    {{answer, code, detail}});
        EXPECT_STREQ(out, version) << detail;
    };
    refused("GTS000", 6, "Buffer does not have enough data (requested: 3, available: 0)", "stale text");
    refused("GTS0000090123456789", 12, "Invalid RSP_LEN1 (expected: 10, read: 9)", "stale text");
    refused("GTS00001101234567890", 12, "Invalid RSP_LEN1 (expected: 10, read: 11)", "stale text");
    refused("GTS000010012345678", 6, "Buffer does not have enough data (requested: 10, available: 9)", "");
    refused("GTS0000100123\r56789", 6, "Invalid character (0x0D) at position 4", "0123\r56789");
}

TEST(Gts, LeavesTheHandleToTheLink) {
    char out[11] = "kept";
    EXPECT_REFUSED(4, "Invalid acqIdx: 100 (maximum is 99)", abecs_cmd_gts(nullptr, 100, nullptr));
    EXPECT_RAISES(2, "'pinpad' is NULL", abecs_cmd_gts(nullptr, 99, out));
    EXPECT_STREQ(out, "kept");
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gts(nullptr, 99, out));
}

}  // namespace
