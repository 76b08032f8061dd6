// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tlr.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/link.h"
#include "tests/support/malloc/failing_malloc.h"
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
    const auto sends = [](const std::string& head, const std::string& batch) {
        Link link;
        link.peer.request(head + batch).response("TLR000");
        EXPECT_EQ(link.call(abecs_cmd_tlr)(batch.c_str()), 0) << head;
    };
    sends("TLR00200", "");
    sends("TLR01501", "01310199AB\r\x13\x16");
    sends("TLR02903", "01110101\x17\xFF 0081010200820101");
    sends("TLR05006", "008101A 008101 A008101  0081011A008111A 008201A ");
    sends("TLR79499", records(99));
    sends("TLR99901", "9971010101" + std::string(987, 'x'));
}

TEST(Tlr, RefusesBadBatches) {
    Link link;
    const auto refused = [&](const std::string& batch, const char* detail) {
        EXPECT_REFUSED(2, detail, abecs_cmd_tlr(link.comm, batch.c_str()));
    };
    refused(std::string(998, 'x'), "'records' is too big (maximum: 997, requested: 998)");
    refused(records(100), "Too many records (maximum: 99, requested: 100)");
    refused(records(101), "Too many records (maximum: 99, requested: 101)");
    refused(records(100) + "008199AB", "Duplicate key (TAB_ID: 1, TAB_ACQ: 99, TAB_RECIDX: AB)");
    refused("010107A xx011107A yyy", "Duplicate key (TAB_ID: 1, TAB_ACQ: 07, TAB_RECIDX: A)");
    refused("008100AB008100AB008", "Duplicate key (TAB_ID: 1, TAB_ACQ: 00, TAB_RECIDX: AB)");
    refused("008900  008900  ", "Duplicate key (TAB_ID: 9, TAB_ACQ: 00, TAB_RECIDX: )");
    EXPECT_REFUSED(2, "'records' is NULL", abecs_cmd_tlr(link.comm, nullptr));
}

TEST(Tlr, NamesTheCauseOfAnInvalidRecordWithoutItsOwnCode) {
    Link link;
    const auto invalid = [&](const std::string& batch, const std::string& cause) {
        support::expect_refused({2, "Invalid record (caused by [KOR_RESULT_IO_ERROR] " + cause + ")"},
                                [&] { return abecs_cmd_tlr(link.comm, batch.c_str()); });
    };
    const auto few = [](const std::string& requested, const std::string& available) {
        return "Buffer does not have enough data (requested: " + requested + ", available: " + available + ")";
    };
    invalid("007101AB", few("18446744073709551615", "0"));
    invalid("000101AB", few("18446744073709551608", "0"));
    invalid("010101ABx", few("2", "1"));
    invalid("008101A", few("2", "1"));
    invalid("008101AB00", few("3", "2"));
    invalid("00A101AB", "Invalid char (0x41) at index 2");
    invalid("008X01AB", "Invalid char (0x58) at index 0");
    invalid("0081 1AB", "Invalid char (0x20) at index 0");
    invalid("008101A\x7F", "Invalid character (0x7F) at position 1");
    invalid(records(101) + "x", few("3", "1"));
    invalid("009101ABx007102AB008101AB", few("18446744073709551615", "8"));
}

TEST(Tlr, MemoryThatEndsIsNoInvalidRecord) {
    Link link;
    const support::Raised duplicate = support::error(2, "Duplicate key (TAB_ID: 1, TAB_ACQ: 01, TAB_RECIDX: AB)");
    size_t n = 1;
    for (support::Raised raised; raised != duplicate && n < 20; ++n) {
        const support::FailingMalloc failing(n);
        raised = support::raised_by([&] { abecs_cmd_tlr(link.comm, "008101AB008102AB008101AB"); });
        EXPECT_EQ(raised, failing.failed() ? support::error(KOR_RESULT_MALLOC_ERROR, "") : duplicate) << n;
        EXPECT_EQ(failing.kept(), 0U) << n;
    }
    EXPECT_GT(n, 6U) << "some is taken while the records are walked";
    EXPECT_LT(n, 20U);
}

}  // namespace
