// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gin.h"

#include <gtest/gtest.h>
#include <string>

#include "quorvel/abecs/rsp_stat.h"
#include "tests/support/link.h"

namespace {

using support::Link;

const std::string kIndex00 =
    "MANUFACTURER        "
    "ABC;DEF;GHI        "
    "C"
    "OS 1.2              "
    "2.12"
    "MV 7            "
    "SN-0000000000000001 ";

AbecsCmdGinOut gin(uint8_t index, const std::string& request, const std::string& response) {
    Link link;
    link.peer.request(request).response(response);
    AbecsCmdGinOut out{};
    EXPECT_EQ(link.call(abecs_cmd_gin)(index, &out), 0);
    return out;
}

TEST(Gin, ReadsIndex00) {
    const AbecsCmdGinOut out = gin(0, "GIN00200", "GIN000100" + kIndex00);
    EXPECT_STREQ(out.idx00.mnName, "MANUFACTURER");
    EXPECT_STREQ(out.idx00.model, "ABC");
    EXPECT_STREQ(out.idx00.modelDetail, "DEF");
    EXPECT_TRUE(out.idx00.ctlsSup);
    EXPECT_STREQ(out.idx00.soVer, "OS 1.2");
    EXPECT_STREQ(out.idx00.specVer, "2.12");
    EXPECT_STREQ(out.idx00.manVers, "MV 7");
    EXPECT_STREQ(out.idx00.serNum, "SN-0000000000000001");
}

TEST(Gin, SplitsTheModelAtItsSemicolons) {
    struct Case {
        const char* field;
        const char* model;
        const char* detail;
    };
    const Case cases[] = {
        {"PLAIN              ", "PLAIN", ""},
        {"A;;B               ", "A", ""},
        {";B                 ", "", "B"},
        {"                   ", "", ""},
        {"ABCDEFGHIJKLMNOPQR;", "ABCDEFGHIJKLMNOPQR", ""},
        {";BCDEFGHIJKLMNOPQRS", "", "BCDEFGHIJKLMNOPQRS"},
        {"A;B C ;D           ", "A", "B C "},
    };
    for (const Case& c : cases) {
        std::string fields = kIndex00;
        fields.replace(20, 19, c.field);
        const AbecsCmdGinOut out = gin(0, "GIN00200", "GIN000100" + fields);
        EXPECT_STREQ(out.idx00.model, c.model) << c.field;
        EXPECT_STREQ(out.idx00.modelDetail, c.detail) << c.field;
    }
}

TEST(Gin, ReadsIndex02) {
    const AbecsCmdGinOut out = gin(2, "GIN00202", "GIN000042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE 07");
    EXPECT_STREQ(out.idx02.text1, "AAAAAAA");
    EXPECT_STREQ(out.idx02.text2, "BBBBBBBBBBB");
    EXPECT_STREQ(out.idx02.text3, "CCCCCCCCCCCC");
    EXPECT_STREQ(out.idx02.text4, "DDD");
    EXPECT_STREQ(out.idx02.text5, "EE");
    EXPECT_EQ(out.idx02.number, 7);
}

TEST(Gin, ReadsIndex03) {
    for (const bool dukpt : {true, false}) {
        const std::string flag = dukpt ? "T" : " ";
        const AbecsCmdGinOut out = gin(3, "GIN00203", "GIN000042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H " + flag + "42");
        EXPECT_STREQ(out.idx03.text1, "AAAAA");
        EXPECT_STREQ(out.idx03.text2, "BBB");
        EXPECT_STREQ(out.idx03.text3, "CCC");
        EXPECT_STREQ(out.idx03.text4, "DD");
        EXPECT_STREQ(out.idx03.text5, "EE");
        EXPECT_STREQ(out.idx03.text6, "FFFFFFFFFFFF");
        EXPECT_STREQ(out.idx03.text7, "GGG");
        EXPECT_STREQ(out.idx03.text8, "H");
        EXPECT_EQ(out.idx03.dukpt, dukpt);
        EXPECT_EQ(out.idx03.number, 42);
    }
}

TEST(Gin, ReadsEveryOtherIndexAlike) {
    for (const uint8_t index : std::initializer_list<uint8_t>{1, 4, 99}) {
        const std::string digits = {static_cast<char>('0' + index / 10), static_cast<char>('0' + index % 10)};
        const AbecsCmdGinOut out = gin(index, "GIN002" + digits, "GIN000042ACQUIRER            BBBBBBBBBBBB CCC DD 99");
        EXPECT_STREQ(out.idxOther.text1, "ACQUIRER");
        EXPECT_STREQ(out.idxOther.text2, "BBBBBBBBBBBB");
        EXPECT_STREQ(out.idxOther.text3, "CCC");
        EXPECT_STREQ(out.idxOther.text4, "DD");
        EXPECT_EQ(out.idxOther.number, 99);
    }
}

TEST(Gin, ReturnsAStatusAndLeavesTheRecord) {
    for (const std::string response : {"GIN011", "ERR010", "GIN011042"}) {
        Link link;
        link.peer.request("GIN00202").response(response);
        AbecsCmdGinOut out{};
        out.idx02.number = 77;
        EXPECT_EQ(link.call(abecs_cmd_gin)(2, &out), response == "ERR010" ? 10 : 11);
        EXPECT_EQ(out.idx02.number, 77);
    }
}

TEST(Gin, RefusesMalformedAnswers) {
    const std::string flag = kIndex00.substr(0, 39) + "X" + kIndex00.substr(40);
    struct Case {
        uint8_t index;
        std::string response;
        int16_t code;
        const char* detail;
    };
    const Case cases[] = {
        {0, "GIN00", 12, "Unrecognized response"},
        {0, "GIX000", 12, "(GIN) Invalid RSP_ID: GIX)"},
        {0, "NTM000", 12, "(GIN) Invalid RSP_ID: NTM)"},
        {0, "GIN002", 12, "Unknown value for RSP_STAT: 002"},
        {0, "GIN0x0", 6, "Invalid char (0x78) at index 1"},
        {0, "GIN000", 6, "Buffer does not have enough data (requested: 3, available: 0)"},
        {0, "GIN000042" + kIndex00, 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 0 (expected 100, read: 42)"},
        {3, "GIN000041", 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: 41)"},
        {1, "GIN000100", 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: 100)"},
        {0, "GIN000100" + flag, 12, "Invalid value for GIN_CTLSSUP: 0x58"},
        {3, "GIN000042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H t42", 12, "Invalid value for GIN_DUKPT: 0x74"},
        {0, "GIN000100MANUFACTURER", 6, "Buffer does not have enough data (requested: 20, available: 12)"},
        {2, "GIN000042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE xx", 6, "Invalid char (0x78) at index 0"},
    };
    for (const Case& c : cases) {
        Link link;
        const std::string digits = {'0', static_cast<char>('0' + c.index)};
        link.peer.request("GIN002" + digits).response(c.response);
        AbecsCmdGinOut out{};
        EXPECT_RAISES(c.code, c.detail, abecs_cmd_gin(link.comm, c.index, &out));
    }
}

TEST(Gin, ChecksItsArgumentsBeforeAnythingIsSent) {
    Link link;
    AbecsCmdGinOut out{};
    EXPECT_RAISES(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid acqIdx: 100 (maximum is 99)",
                  abecs_cmd_gin(nullptr, 100, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_cmd_gin(nullptr, 0, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL", abecs_cmd_gin(nullptr, 0, &out));
    const support::ReturningRaises handler;
    EXPECT_EQ(abecs_cmd_gin(link.comm, 100, &out), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs_cmd_gin(link.comm, 0, nullptr), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs_cmd_gin(nullptr, 0, &out), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(handler.all().size(), 3U);
}

}  // namespace
