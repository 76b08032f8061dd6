// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tlr.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

// Records without a body, one for each acquirer index from 0 on; behind index 99 come those of the next table.
std::string records(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "008";
        text += static_cast<char>('1' + i / 100);
        text += static_cast<char>('0' + i / 10 % 10);
        text += static_cast<char>('0' + i % 10);
        text += "AB";
    }
    return text;
}

TEST(Tlr, SendsTheBatchAsItStands) {
    const struct {
        std::string records;
        std::string head;
    } rows[] = {
        {"", "TLR00200"},
        {"01310199AB\r\x13\x16", "TLR01501"},
        {"01110101\x17\xFF 0081010200820101", "TLR02903"},
        {"008101A 008101 A008101  0081011A008111A 008201A ", "TLR05006"},
        {records(99), "TLR79499"},
        {"9971010101" + std::string(987, 'x'), "TLR99901"},
    };
    for (const auto& row : rows) {
        Link link;
        link.peer.request(row.head + row.records).response("TLR000");
        EXPECT_EQ(link.call(abecs_cmd_tlr)(row.records.c_str()), 0) << row.head;
    }
}

TEST(Tlr, RefusesBadBatches) {
    const struct {
        std::string records;
        const char* detail;
    } rows[] = {
        {std::string(998, 'x'), "'records' is too big (maximum: 997, requested: 998)"},
        {records(100), "Too many records (maximum: 99, requested: 100)"},
        {records(101), "Too many records (maximum: 99, requested: 101)"},
        {records(100) + "008199AB", "Duplicate key (TAB_ID: 1, TAB_ACQ: 99, TAB_RECIDX: AB)"},
        {"010107A xx011107A yyy", "Duplicate key (TAB_ID: 1, TAB_ACQ: 07, TAB_RECIDX: A)"},
        {"008100AB008100AB008", "Duplicate key (TAB_ID: 1, TAB_ACQ: 00, TAB_RECIDX: AB)"},
        {"008900  008900  ", "Duplicate key (TAB_ID: 9, TAB_ACQ: 00, TAB_RECIDX: )"},
    };
    Link link;
    for (const auto& row : rows) { EXPECT_REFUSED(2, row.detail, abecs_cmd_tlr(link.comm, row.records.c_str())); }
    EXPECT_REFUSED(2, "'records' is NULL", abecs_cmd_tlr(link.comm, nullptr));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_tlr(nullptr, nullptr));
}

TEST(Tlr, NamesTheCauseOfAnInvalidRecordWithoutItsOwnCode) {
    const struct {
        std::string records;
        const char* cause;
    } rows[] = {
        {"007101AB", "Buffer does not have enough data (requested: 18446744073709551615, available: 0)"},
        {"000101AB", "Buffer does not have enough data (requested: 18446744073709551608, available: 0)"},
        {"010101ABx", "Buffer does not have enough data (requested: 2, available: 1)"},
        {"008101A", "Buffer does not have enough data (requested: 2, available: 1)"},
        {"008101AB00", "Buffer does not have enough data (requested: 3, available: 2)"},
        {"00A101AB", "Invalid char (0x41) at index 2"},
        {"008X01AB", "Invalid char (0x58) at index 0"},
        {"0081 1AB", "Invalid char (0x20) at index 0"},
        {"008101A\x7F", "Invalid character (0x7F) at position 1"},
        {records(101) + "x", "Buffer does not have enough data (requested: 3, available: 1)"},
        {"009101ABx007102AB008101AB",
         "Buffer does not have enough data (requested: 18446744073709551615, available: 8)"},
    };
    Link link;
    for (const auto& row : rows) {
        const std::string cause = "[KOR_RESULT_IO_ERROR] " + std::string(row.cause);
        support::expect_refused({2, "Invalid record (caused by " + cause + ")"},
                                [&] { return abecs_cmd_tlr(link.comm, row.records.c_str()); });
    }
}

TEST(Tlr, ReadsTheStatus) {
    Link link;
    for (const std::string response : {"TLR021", "ERR019", "TLR00", "TLE000"}) {
        link.peer.request("TLR01001008101AB").response(response);
    }
    EXPECT_EQ(link.call(abecs_cmd_tlr)("008101AB"), 21);
    EXPECT_EQ(link.call(abecs_cmd_tlr)("008101AB"), 19);
    EXPECT_RAISES(12, "Unrecognized response", abecs_cmd_tlr(link.comm, "008101AB"));
    EXPECT_RAISES(12, "Invalid RSP_ID (expected TLR, read: TLE)", abecs_cmd_tlr(link.comm, "008101AB"));
}

}  // namespace
