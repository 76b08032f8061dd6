// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gin.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/abecs/cmd/answers.h"
#include "tests/support/refused.h"

namespace {

using support::Link;
using Texts = std::vector<std::string>;

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
    const auto out = gin(0, "GIN00200", "GIN000100" + kIndex00).idx00;
    const Texts texts{out.mnName, out.model, out.modelDetail, out.soVer, out.specVer, out.manVers, out.serNum};
    EXPECT_EQ(texts, (Texts{"MANUFACTURER", "ABC", "DEF", "OS 1.2", "2.12", "MV 7", "SN-0000000000000001"}));
    EXPECT_TRUE(out.ctlsSup);
}

TEST(Gin, SplitsTheModelAtItsSemicolons) {
    const auto splits = [](const char* field, const char* model, const char* detail) {
        std::string fields = kIndex00;
        fields.replace(20, 19, field);
        const AbecsCmdGinOut out = gin(0, "GIN00200", "GIN000100" + fields);
        EXPECT_STREQ(out.idx00.model, model) << field;
        EXPECT_STREQ(out.idx00.modelDetail, detail) << field;
    };
    splits("PLAIN              ", "PLAIN", "");
    splits("A;;B               ", "A", "");
    splits(";B                 ", "", "B");
    splits("                   ", "", "");
    splits("ABCDEFGHIJKLMNOPQR;", "ABCDEFGHIJKLMNOPQR", "");
    splits(";BCDEFGHIJKLMNOPQRS", "", "BCDEFGHIJKLMNOPQRS");
    splits("A;B C ;D           ", "A", "B C ");
}

TEST(Gin, ReadsIndex02) {
    const auto out = gin(2, "GIN00202", "GIN000042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE 07").idx02;
    const Texts texts{out.text1, out.text2, out.text3, out.text4, out.text5};
    EXPECT_EQ(texts, (Texts{"AAAAAAA", "BBBBBBBBBBB", "CCCCCCCCCCCC", "DDD", "EE"}));
    EXPECT_EQ(out.number, 7);
}

TEST(Gin, ReadsIndex03) {
    for (const bool dukpt : {true, false}) {
        const std::string rest = dukpt ? "T42" : " 42";
        const auto out = gin(3, "GIN00203", "GIN000042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H " + rest).idx03;
        const Texts texts{out.text1, out.text2, out.text3, out.text4, out.text5, out.text6, out.text7, out.text8};
        EXPECT_EQ(texts, (Texts{"AAAAA", "BBB", "CCC", "DD", "EE", "FFFFFFFFFFFF", "GGG", "H"}));
        EXPECT_EQ(out.dukpt, dukpt);
        EXPECT_EQ(out.number, 42);
    }
}

TEST(Gin, ReadsEveryOtherIndexAlike) {
    for (const uint8_t index : std::initializer_list<uint8_t>{1, 4, 99}) {
        const std::string digits = {static_cast<char>('0' + index / 10), static_cast<char>('0' + index % 10)};
        const auto out = gin(index, "GIN002" + digits, "GIN000042ACQUIRER            BBBBBBBBBBBB CCC DD 99").idxOther;
        const Texts texts{out.text1, out.text2, out.text3, out.text4};
        EXPECT_EQ(texts, (Texts{"ACQUIRER", "BBBBBBBBBBBB", "CCC", "DD"}));
        EXPECT_EQ(out.number, 99);
    }
}

TEST(Gin, RefusesMalformedAnswers) {
    AbecsCmdGinOut out{};
    const auto refused = [&](uint8_t index, const std::string& response, int16_t code, const char* detail) {
        support::expect_bad_answers("GIN0020" + std::to_string(index),
                                    [&](AbecsComm* link) { abecs_cmd_gin(link, index, &out); },
                                    {{"GIN000" + response, code, detail}});
    };
    const std::string flag = "100" + kIndex00.substr(0, 39) + "X" + kIndex00.substr(40);
    refused(0, "", 6, "Buffer does not have enough data (requested: 3, available: 0)");
    refused(0, "042" + kIndex00, 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 0 (expected 100, read: 42)");
    refused(3, "041", 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: 41)");
    refused(1, "100", 12, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: 100)");
    refused(0, flag, 12, "Invalid value for GIN_CTLSSUP: 0x58");
    refused(3, "042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H t42", 12, "Invalid value for GIN_DUKPT: 0x74");
    refused(0, "100MANUFACTURER", 6, "Buffer does not have enough data (requested: 20, available: 12)");
    refused(2, "042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE xx", 6, "Invalid char (0x78) at index 0");
}

TEST(Gin, AnErrorLeavesTheFieldsBeforeIt) {
    AbecsCmdGinOut out;
    const auto fails = [&](uint8_t index, const std::string& response) {
        std::memset(&out, 'k', sizeof out);
        Link link;
        link.peer.request("GIN0020" + std::to_string(index)).response("GIN000" + response);
        EXPECT_NE(support::raised_by([&] { abecs_cmd_gin(link.comm, index, &out); }), support::Raised{});
    };
    const auto damaged = [](size_t at) {
        std::string fields = kIndex00;
        fields[at] = '\x7F';
        return "100" + fields;
    };
    const AbecsCmdGinOut untouched = [] {
        AbecsCmdGinOut all;
        std::memset(&all, 'k', sizeof all);
        return all;
    }();
    fails(0, "042" + kIndex00);
    EXPECT_EQ(std::memcmp(&out, &untouched, sizeof out), 0);
    fails(0, damaged(25));
    EXPECT_STREQ(out.idx00.mnName, "MANUFACTURER");
    EXPECT_STREQ(out.idx00.model,
                 "ABC;D\x7F"
                 "F;GHI");
    EXPECT_EQ(out.idx00.modelDetail[0], 'k');
    fails(0, damaged(39));
    EXPECT_STREQ(out.idx00.modelDetail, "DEF");
    EXPECT_EQ(std::memcmp(&out.idx00.ctlsSup, "k", 1), 0);
    fails(0, damaged(50));
    EXPECT_TRUE(out.idx00.ctlsSup);
    EXPECT_STREQ(out.idx00.soVer, "OS 1.2    \x7F");
    EXPECT_EQ(out.idx00.specVer[0], 'k');
    fails(2, "042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE xx");
    EXPECT_STREQ(out.idx02.text5, "EE");
    EXPECT_EQ(out.idx02.number, 'k');
}

TEST(Gin, LeavesTheHandleToTheLink) {
    AbecsCmdGinOut out{};
    EXPECT_REFUSED(4, "Invalid acqIdx: 100 (maximum is 99)", abecs_cmd_gin(nullptr, 100, nullptr));
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gin(nullptr, 0, &out));
}

}  // namespace
