// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/fnc.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

#include "tests/abecs/cmd/card_command.h"

namespace {

using namespace support::literals;
using support::Link;
using support::repeated;

TEST(Fnc, SendsTheAnswerOfTheAcquirer) {
    const auto expect_sent = [](const AbecsCmdFncData& data, const std::string& request,
                                support::Peer::Where where = {}) {
        Link link;
        link.peer.request("FNC" + request, where).response("FNC021", where);
        AbecsCmdFncResponse out{77, 0, "", 0, "", 0};
        EXPECT_EQ(link.call(abecs_cmd_fnc, where)(&data, &out), 21);
        EXPECT_EQ(out.decision, 77U);
    };
    expect_sent({0, "00", 0, "", 0, ""}, "010|00|00|000|000|003|000"_wire);
    expect_sent({1, "Z", 4, "9108aabb", 2, "9F26"}, "018|10|Z |004|9108AABB|000|007|002|9F26"_wire);
    expect_sent({9, "51", 2, "72", 0, ""}, "014|90|51|002|3072|000|003|000"_wire);
    expect_sent({0, "", 494, "", 498, "82"},
                "998|00|  |494"_wire + repeated("30", 494) + "000|999|498"_wire + repeated("30", 497) + "82");
}

TEST(Fnc, ChecksItsArgumentsInTheirOrder) {
    Link link;
    AbecsCmdFncData data{-1, "\n", 1000, "", 1000, ""};
    AbecsCmdFncResponse out{};
    // Refused, and then mended.
    const auto refused = [&](const std::string& detail, auto& field, int32_t good) {
        EXPECT_REFUSED(2, detail, abecs_cmd_fnc(link.comm, &data, &out));
        field = static_cast<std::remove_reference_t<decltype(field)>>(good);
    };
    EXPECT_REFUSED(2, "'cmdData' is NULL", abecs_cmd_fnc(link.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'rspData' is NULL", abecs_cmd_fnc(link.comm, &data, nullptr));
    refused("invalid cmdData->issDatLen: 1000 (max: 999)", data.issDatLen, 999);
    refused("invalid cmdData->tagsLen: 1000 (max: 999)", data.tagsLen, 999);
    for (const int32_t next : {2, 8, 10, 9}) {
        refused("invalid cmdData->commSt: " + std::to_string(data.commSt), data.commSt, next);
    }
    refused("Number length (4) is greater than field length (3)", data.issDatLen, 494);
    refused("Invalid character (0x0A) at position 0", data.arc[0], '0');
    std::memset(data.arc, '0', sizeof data.arc);
    refused("Field does not have enough room for data", data.arc[2], '\0');
    std::memset(data.issDat, 'a', sizeof data.issDat);
    refused("Field does not have enough room for data", data.issDat[3], '\0');
    refused("Invalid hex byte at index 2", data.issDat[0], '\0');
    refused("Number length (4) is greater than field length (3)", data.tagsLen, 498);
    std::memset(data.tags, 'x', sizeof data.tags);
    refused("Invalid hex byte at index 0", data.tags[0], '\0');
}

TEST(Fnc, ReadsTheLastDecision) {
    const AbecsCmdFncData data{0, "00", 0, "", 0, ""};
    AbecsCmdFncResponse out{};
    const auto read = [&](const std::string& response) {
        Link link;
        link.peer.request("FNC01000|00|000000|003000"_wire).response("FNC000" + response);
        out = {77, 78, "old", 79, "old", 80};
        return support::raised_by([&] { abecs_cmd_fnc(link.comm, &data, &out); });
    };
    const auto reads = [&](const std::string& response, uint32_t decision, size_t emvDataLen,
                           const std::string& emvData, size_t isResultsLen, const std::string& isResults,
                           size_t acqDataLen) {
        EXPECT_EQ(read(response), support::Raised{});
        EXPECT_EQ(out.decision, decision);
        EXPECT_EQ(out.emvDataLen, emvDataLen);
        EXPECT_EQ(out.emvData, emvData);
        EXPECT_EQ(out.isResultsLen, isResultsLen);
        EXPECT_EQ(out.isResults, isResults);
        EXPECT_EQ(out.acqDataLen, acqDataLen);
    };
    reads("999|1|003|9f2601|02|aB0C|007"_wire, 1, 3, "9f2601", 2, "aB0C", 7);
    reads("000|0|000|00|000"_wire, 0, 0, "", 0, "", 0);
    reads("000|2|002|3095|01|30|999|behind"_wire, 2, 2, "95", 1, "", 999);
    reads("999|0|256"_wire + repeated("A", 512) + "50" + repeated("C", 100) + "009", 0, 256, repeated("A", 512), 50,
          repeated("C", 100), 9);
    // What was read before the fault stays, and no length says more than its text has room for.
    const auto refused = [&](const std::string& response, int16_t code, const char* detail, uint32_t decision,
                             uint32_t emvDataLen, uint32_t isResultsLen) {
        EXPECT_EQ(read(response), support::error(code, detail));
        EXPECT_EQ(out.decision, decision) << detail;
        EXPECT_EQ(out.emvDataLen, emvDataLen) << detail;
        EXPECT_EQ(out.isResultsLen, isResultsLen) << detail;
        EXPECT_EQ(out.acqDataLen, 80U) << detail;
    };
    refused("999|x"_wire, 6, "Invalid char (0x78) at index 0", 77, 78, 79);
    refused("999|5|257"_wire + repeated("AB", 257) + "00|000"_wire, 2,
            "sizeTo (513) is not enough to store field (length: 514)", 5, 78, 79);
    EXPECT_STREQ(out.emvData, "");
    refused("999|6|001AB|51"_wire + repeated("CD", 51) + "000", 2,
            "sizeTo (101) is not enough to store field (length: 102)", 6, 1, 79);
    EXPECT_STREQ(out.emvData, "AB");
    EXPECT_STREQ(out.isResults, "");
    refused("999|7|002|ABx0"_wire, 6, "Invalid data: x0", 7, 78, 79);
    EXPECT_STREQ(out.emvData, "");
    refused("999|0|257|AB"_wire, 6, "Buffer does not have enough data (requested: 514, available: 2)", 0, 78, 79);
    refused("999|0|000|00"_wire, 6, "Buffer does not have enough data (requested: 3, available: 0)", 0, 0, 0);
}

}  // namespace
