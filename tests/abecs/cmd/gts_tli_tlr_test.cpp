// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Gts, ReadsTheVersion) {
    const auto reads = [](uint8_t index, const Text& response, const Outcome& expected, const char* version) {
        char out[11] = "stale text";
        const std::string request = std::string("GTS0020") + static_cast<char>('0' + index);
        exchanges({index == 99 ? "GTS00299" : request, response.where}, response.text, expected, abecs_cmd_gts, index,
                  out);
        EXPECT_STREQ(out, version) << response.text;
    };
    reads(0, "GTS0000100123456789", kOk, "0123456789");
    reads(9, "GTS000010 V1       ", kOk, " V1");
    reads(99, "GTS000010          ", kOk, "");
    reads(1, "GTS0110100123456789", ABECS_RSP_STAT_ST_INVPARM, "");
    reads(1, "GTS00001101234567890", error(kProtocol, "Invalid RSP_LEN1 (expected: 10, read: 11)"), "stale text");
    const Raised badIndex = error(kIndex, "Invalid acqIdx: 100 (maximum is 99)");
    refuses(badIndex, abecs_cmd_gts, 100, nullptr);
}

TEST(Tli, AnnouncesIndexAndVersion) {
    exchanges("TLI012000123456789", "TLI020", ABECS_RSP_STAT_ST_TABVERDIF, abecs_cmd_tli, 0, "0123456789");
    exchanges("TLI01299V~1       ", "TLI000", kOk, abecs_cmd_tli, 99, "V~1");
    const Raised badIndex = error(kIndex, "Invalid 'acqIdx': 100 (maximum is 99)");
    refuses(badIndex, abecs_cmd_tli, 100, nullptr);
    refuses("'tabVer' is NULL", abecs_cmd_tli, 99, nullptr);
    refuses("Invalid 'tabVer' length: 11 (max: 10)", abecs_cmd_tli, 99, "0123456789\r");
}

// Records without a body, one for each acquirer index from 0 on; behind index 99 come those of the next table.
std::string records(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) { text += "008" + std::to_string(100 + i) + "AB"; }
    return text;
}

TEST(Tlr, SendsTheBatchAsItStands) {
    const auto sendsBatch = [](const std::string& head, const std::string& batch) {
        exchanges(head + batch, "TLR000", kOk, abecs_cmd_tlr, batch.c_str());
    };
    sendsBatch("TLR00200", "");
    sendsBatch("TLR01501", "01310199AB\r\x13\x16");
    sendsBatch("TLR02903", "01110101\x17\xFF 0081010200820101");
    sendsBatch("TLR05006", "008101A 008101 A008101  0081011A008111A 008201A ");
    sendsBatch("TLR79499", records(99));
    sendsBatch("TLR99901", "9971010101" + std::string(987, 'x'));
}

TEST(Tlr, RefusesBadBatches) {
    const auto refused = [](const std::string& batch, const Refusal& refusal) {
        refuses(refusal, abecs_cmd_tlr, batch.c_str());
    };
    refuses("'records' is NULL", abecs_cmd_tlr, nullptr);
    refused(std::string(998, 'x'), "'records' is too big (maximum: 997, requested: 998)");
    refused(records(100), "Too many records (maximum: 99, requested: 100)");
    refused(records(100) + "008199AB", "Duplicate key (TAB_ID: 1, TAB_ACQ: 99, TAB_RECIDX: AB)");
    refused("010107A xx011107A yyy", "Duplicate key (TAB_ID: 1, TAB_ACQ: 07, TAB_RECIDX: A)");
    refused("008900  008900  ", "Duplicate key (TAB_ID: 9, TAB_ACQ: 00, TAB_RECIDX: )");
    // The cause is named, and has not its own code.
    const auto invalid = [&](const std::string& batch, const Raised& cause) {
        refused(batch, Raised{kArgument, "Invalid record (caused by " + cause.message + ")"});
    };
    invalid("007101AB", too_few(SIZE_MAX, 0));
    invalid("008101A", too_few(2, 1));
    invalid("008101AB00", too_few(3, 2));
    invalid("008X01AB", error(kIo, "Invalid char (0x58) at index 0"));
    invalid("008101A\x7F", error(kIo, "Invalid character (0x7F) at position 1"));
    invalid("009101ABx007102AB008101AB", too_few(SIZE_MAX, 8));
}

}  // namespace
