// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gdu.h"

#include <gtest/gtest.h>

#include "tests/abecs/cmd/answers.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

AbecsCmdGduMethod_E method(int32_t value) { return static_cast<AbecsCmdGduMethod_E>(value); }

TEST(Gdu, ReadsTheSerialNumber) {
    const auto reads = [](int32_t number, uint8_t index, const char* request, const char* response, const char* ksn) {
        Link link;
        link.peer.request(request).response(response);
        char out[21] = "kept";
        EXPECT_EQ(link.call(abecs_cmd_gdu)(method(number), index, out), 0) << response;
        EXPECT_STREQ(out, ksn) << response;
    };
    reads(2, 0, "GDU003200", "GDU000020FFFF9876543210E00001", "FFFF9876543210E00001");
    reads(3, 99, "GDU003399", "GDU00002030309876543210e03030", "9876543210e03030");
}

TEST(Gdu, RefusesMalformedAnswers) {
    char out[21] = "old";
    const auto gdu = [&](AbecsComm* link) { abecs_cmd_gdu(link, ABECS_CMD_GDU_METHOD_2, 0, out); };
    support::expect_bad_answers(
        "GDU003200", gdu,
        {{"GDU000", 6, "Buffer does not have enough data (requested: 3, available: 0)"},
         {"GDU000019FFFF9876543210E00001", 12, "Invalid RSP_LEN1 (expected: 20, read: 19)"},
         {"GDU000021FFFF9876543210E000010", 12, "Invalid RSP_LEN1 (expected: 20, read: 21)"},
         {"GDU000020FFFF9876543210E000", 6, "Buffer does not have enough data (requested: 20, available: 18)"},
         {"GDU000020FFFF9876543210E0000z", 6, "Invalid data: 0z"}});
    EXPECT_STREQ(out, "");
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
