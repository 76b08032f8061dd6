// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"
#include "tests/core/temp_dir.h"

namespace {

using namespace support;
using Names = std::vector<std::string>;

const std::string kName = "001E 0008"_hex;

TEST(Mli, AnnouncesNameSizeCrcAndType) {
    const auto announces = [](const char* name, uint32_t size, uint16_t crc, uint8_t type, const Text& sent) {
        exchanges({"MLI026" + kName + sent.text, sent.where}, "MLI000", kOk, abecs_cmd_mli, name, size, crc, type);
    };
    announces("aZ09_-.~", 0xFFFFFFFF, 0xFFFF, 255, "AZ09_-.~" + "001F 000A FFFFFFFF FFFF FF 000000"_hex);
    announces("X", 0x01020304, 0x1617, 0, "X       " + "001F 000A 01020304 1617 00 000000"_hex);
    exchanges("DSI012" + kName + "A       ", "DSI000", kOk, abecs_cmd_dsi, "a");
    const auto refused = [](const Refusal& refusal, const char* name) {
        refuses(refusal, abecs_cmd_mli, name, 0, 0, 0);
        refuses(refusal, abecs_cmd_dsi, name);
    };
    refused("'filename' is NULL", nullptr);
    refused("'filename' is empty", "");
    refused("'filename' is too long (max: 8, requested: 9)", "NINECHARS");
    refused("Invalid character (0x7F) at position 5", "12345\x7F");
}

TEST(Mlr, SendsOneBlock) {
    std::string block(995, 'd');
    block[0] = 0x17;
    const auto* data = reinterpret_cast<const uint8_t*>(block.data());
    exchanges("MLR005" + "000F 0001 17"_hex, "MLR000", kOk, abecs_cmd_mlr, data, 1);
    exchanges("MLR999" + "000F 03E3"_hex + block, "MLR102", ABECS_RSP_STAT_ST_MFERR, abecs_cmd_mlr, data, 995);
    refuses("'data' is NULL", abecs_cmd_mlr, nullptr, 996);
    refuses("'szData' is too big (max: 995, req: 996)", abecs_cmd_mlr, data, 996);
    refuses("'szData' is zero", abecs_cmd_mlr, data, 0);
}

class MediaList : public testing::Test {
protected:
    ~MediaList() override { kor_string_list_delete(&list_); }

    void fill(const Names& all) {
        kor_string_list_clear(list_);
        for (const std::string& name : all) { kor_string_list_append(list_, name.c_str()); }
    }

    void expect_names(const Names& expected) { EXPECT_EQ(texts_of(list_), expected); }

    KorList* list_ = kor_string_list_new();
};

using Lmf = MediaList;
using Dmf = MediaList;

TEST_F(Lmf, ReplacesTheListByTheNames) {
    const auto reads = [&](const Text& response, const Outcome& expected, const Names& names) {
        fill({"old"});
        exchanges({"LMF"_wire, response.where}, "LMF000" + response.text, expected, abecs_cmd_lmf, list_);
        expect_names(names);
    };
    const std::string a = "805E 0008"_hex + "A       ";
    const std::string b = "805E 0008"_hex + "B1234567";
    reads("036" + b + a + b, kOk, {"B1234567", "A", "B1234567"});
    reads("012" + b + "026" + a + "805E 000A"_hex + "C1234567xx", kOk, {"B1234567", "A", "C1234567"});
    reads("", kOk, {});
    reads("024" + a + "001E 0008"_hex + "A       ", error(kProtocol, "Unrecognized RSP_DATID: 30"), {"A"});
    reads("023" + a + "805E 0007"_hex + "A      ", too_few(8, 7), {"A"});
    refuses("'out' is NULL", abecs_cmd_lmf, nullptr);
    expect_names({"A"});
}

TEST_F(Dmf, NamesTheFilesInTheirOrder) {
    fill({"b", "A.x-Y_z9", "\xC1", ""});
    exchanges("DMF048" + kName + "B       " + kName + "A.X-Y_Z9" + kName + "\xC1       " + kName + "        ", "DMF100",
              ABECS_RSP_STAT_ST_MFNFOUND, abecs_cmd_dmf, list_);
}

TEST_F(Dmf, TwoBlocksHold166Names) {
    const std::string block = "996" + repeated(kName + "LOGO    ", 83);
    fill(Names(166, "logo"));
    exchanges("DMF" + block + block, "DMF000", kOk, abecs_cmd_dmf, list_);
    kor_string_list_append(list_, "logo");
    refuses(too_full(2, 1), abecs_cmd_dmf, list_);
}

TEST_F(Dmf, ChecksEveryNameBeforeAnythingIsSent) {
    refuses("'files' is NULL", abecs_cmd_dmf, nullptr);
    refuses("At least one file must be supplied", abecs_cmd_dmf, list_);
    fill({"fine", "NineChars", "TenCharact"});
    refuses("\"NineChars\" it too long (max: 8, requested: 9)", abecs_cmd_dmf, list_);
    fill({"fine", "a\rb"});
    refuses("Invalid character (0x0D) at position 1", abecs_cmd_dmf, list_);
    fill({"fine"});
    kor_string_list_append(list_, nullptr);
    refuses("'files' has an item that is NULL", abecs_cmd_dmf, list_);
}

}  // namespace
