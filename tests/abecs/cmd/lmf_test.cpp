// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/lmf.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "quorvel/abecs/cmd/dmf.h"
#include "quorvel/kor/string_list.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using Names = std::vector<std::string>;

class MediaList : public testing::Test {
protected:
    ~MediaList() override { kor_string_list_delete(&list_); }

    Names names() {
        Names all;
        for (auto* node = kor_string_list_first(list_); node != nullptr; node = kor_string_list_next(node)) {
            all.emplace_back(kor_string_list_item(node));
        }
        return all;
    }

    void fill(const Names& all) {
        kor_string_list_clear(list_);
        for (const std::string& name : all) { kor_string_list_append(list_, name.c_str()); }
    }

    Link link_;
    KorList* list_ = kor_string_list_new();
};

class Lmf : public MediaList {};
class Dmf : public MediaList {};

TEST_F(Lmf, ReplacesTheListByTheNames) {
    const auto reads = [&](const std::string& response, int32_t stat, const Names& expected) {
        fill({"old"});
        link_.peer.request("LMF").response(response);
        EXPECT_EQ(link_.call(abecs_cmd_lmf)(list_), stat) << response;
        EXPECT_EQ(names(), expected) << response;
    };
    const std::string a = "805E 0008"_hex + "A       ";
    const std::string b = "805E 0008"_hex + "B1234567";
    reads("LMF000012" + a, 0, {"A"});
    reads("LMF000036" + b + a + b, 0, {"B1234567", "A", "B1234567"});
    reads("LMF000012" + b + "026" + a + "805E 000A"_hex + "C1234567xx", 0, {"B1234567", "A", "C1234567"});
    reads("LMF000", 0, {});
    reads("LMF000000", 0, {});
    reads("LMF010", 10, {});
}

TEST_F(Lmf, RefusesMalformedAnswers) {
    const std::string good = "805E 0008"_hex + "GOOD    ";
    const auto refused = [&](const std::string& bad, int16_t code, const char* detail) {
        fill({"old"});
        link_.peer.request("LMF").response("LMF0000" + std::to_string(good.size() + bad.size()) + good + bad);
        EXPECT_RAISES(code, detail, abecs_cmd_lmf(link_.comm, list_));
        EXPECT_EQ(names(), Names{"GOOD"}) << detail;
    };
    refused("001E 0008"_hex + "A       ", 12, "Unrecognized RSP_DATID: 30");
    refused("FFFF 0008"_hex + "A       ", 12, "Unrecognized RSP_DATID: 65535");
    refused("805E 0007"_hex + "A      ", 6, "Buffer does not have enough data (requested: 8, available: 7)");
    refused("805E 0008"_hex + "A\x80      ", 6, "Invalid character (0x80) at position 1");
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_lmf(link_.comm, nullptr));
    fill({"old"});
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_lmf(nullptr, list_));
    EXPECT_EQ(names(), Names{"old"});
}

TEST_F(Dmf, NamesTheFilesInTheirOrder) {
    const std::string head = "001E 0008"_hex;
    fill({"b", "A.x-Y_z9", "\xC1", ""});
    const std::string fields = head + "B       " + head + "A.X-Y_Z9" + head + "\xC1       " + head + "        ";
    for (const std::string response : {"DMF000", "DMF100", "ERR010"}) {
        link_.peer.request("DMF048" + fields).response(response);
        EXPECT_EQ(link_.call(abecs_cmd_dmf)(list_), std::stoi(response.substr(3))) << response;
    }
}

TEST_F(Dmf, TwoBlocksHold166Names) {
    const std::string one = "001E 0008"_hex + "LOGO    ";
    std::string block = "996";
    for (int i = 0; i < 83; ++i) { block += one; }
    fill(Names(166, "logo"));
    link_.peer.request("DMF" + block + block).response("DMF000");
    EXPECT_EQ(link_.call(abecs_cmd_dmf)(list_), 0);
    kor_string_list_append(list_, "logo");
    EXPECT_REFUSED(6, "No enough space in buffer (available: 1, requested: 2)", abecs_cmd_dmf(link_.comm, list_));
}

TEST_F(Dmf, ChecksEveryNameBeforeAnythingIsSent) {
    EXPECT_REFUSED(2, "'files' is NULL", abecs_cmd_dmf(link_.comm, nullptr));
    EXPECT_REFUSED(2, "At least one file must be supplied", abecs_cmd_dmf(link_.comm, list_));
    fill({"fine", "NineChars", "TenCharact"});
    EXPECT_REFUSED(2, "\"NineChars\" it too long (max: 8, requested: 9)", abecs_cmd_dmf(link_.comm, list_));
    fill({"fine", "a\rb"});
    EXPECT_REFUSED(2, "Invalid character (0x0D) at position 1", abecs_cmd_dmf(link_.comm, list_));
    fill({"fine"});
    kor_string_list_append(list_, nullptr);
    EXPECT_REFUSED(2, "'files' has an item that is NULL", abecs_cmd_dmf(link_.comm, list_));
}

}  // namespace
