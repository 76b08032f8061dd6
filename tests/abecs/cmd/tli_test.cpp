// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tli.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

TEST(Tli, AnnouncesIndexAndVersion) {
    const auto announces = [](uint8_t index, const char* version, const char* request) {
        Link link;
        link.peer.request(request).response("TLI020");
        EXPECT_EQ(link.call(abecs_cmd_tli)(index, version), 20) << request;
    };
    announces(0, "0123456789", "TLI012000123456789");
    announces(99, "V~1", "TLI01299V~1       ");
    announces(7, "", "TLI01207          ");
}

TEST(Tli, ChecksItsArgumentsInTheirOrder) {
    Link link;
    EXPECT_REFUSED(4, "Invalid 'acqIdx': 100 (maximum is 99)", abecs_cmd_tli(link.comm, 100, nullptr));
    EXPECT_REFUSED(2, "'tabVer' is NULL", abecs_cmd_tli(link.comm, 99, nullptr));
    EXPECT_REFUSED(2, "Invalid 'tabVer' length: 11 (max: 10)", abecs_cmd_tli(link.comm, 99, "0123456789\r"));
    EXPECT_REFUSED(2, "Invalid character (0xE1) at position 1", abecs_cmd_tli(link.comm, 99, "V\xE1"));
}

}  // namespace
