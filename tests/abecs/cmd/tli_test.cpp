// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tli.h"

#include <gtest/gtest.h>
#include <string>

#include "quorvel/abecs/cmd/tle.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

TEST(Tli, AnnouncesIndexAndVersion) {
    const struct {
        uint8_t index;
        const char* version;
        const char* request;
        const char* response;
        int32_t stat;
    } rows[] = {
        {0, "0123456789", "TLI012000123456789", "TLI000", 0},
        {99, "V~1", "TLI01299V~1       ", "TLI020", 20},
        {7, "", "TLI01207          ", "ERR010", 10},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request(row.request).response(row.response);
        EXPECT_EQ(link.call(abecs_cmd_tli)(row.index, row.version), row.stat) << row.request;
    }
}

TEST(Tli, ChecksItsArgumentsInTheirOrder) {
    Link link;
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_tli(nullptr, 100, nullptr));
    EXPECT_REFUSED(4, "Invalid 'acqIdx': 100 (maximum is 99)", abecs_cmd_tli(link.comm, 100, nullptr));
    EXPECT_REFUSED(2, "'tabVer' is NULL", abecs_cmd_tli(link.comm, 99, nullptr));
    EXPECT_REFUSED(2, "Invalid 'tabVer' length: 11 (max: 10)", abecs_cmd_tli(link.comm, 99, "0123456789\r"));
    EXPECT_REFUSED(2, "Invalid character (0xE1) at position 1", abecs_cmd_tli(link.comm, 99, "V\xE1"));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_tle(nullptr));
}

TEST(Tle, EndsTheLoad) {
    Link link;
    link.peer.request("TLE").response("TLE000").request("TLE").response("TLE021");
    EXPECT_EQ(link.call(abecs_cmd_tle)(), 0);
    EXPECT_EQ(link.call(abecs_cmd_tle)(), 21);
}

TEST(TableLoad, RefusesOtherAnswersWithATextOfItsOwn) {
    Link link;
    link.peer.request("TLI01201V         ").response("TLI00").request("TLE").response("TLE00");
    EXPECT_RAISES(12, "Unrecognized response", abecs_cmd_tli(link.comm, 1, "V"));
    EXPECT_RAISES(12, "Unrecognized response", abecs_cmd_tle(link.comm));
    link.peer.request("TLI01201V         ").response("TLE000").request("TLE").response("NTM000");
    EXPECT_RAISES(12, "Invalid RSP_ID (expected TLI, read: TLE)", abecs_cmd_tli(link.comm, 1, "V"));
    EXPECT_RAISES(12, "Invalid RSP_ID (expected TLE, read: NTM)", abecs_cmd_tle(link.comm));
}

}  // namespace
