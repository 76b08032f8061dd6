// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;
using Texts = std::vector<std::string>;
using Items = ParamMap::Items;

const std::string kIndex00 =
    "MANUFACTURER        |ABC;DEF;GHI        |C|OS 1.2              |2.12|MV 7            |"
    "SN-0000000000000001 "_wire;

AbecsCmdGinOut gin(uint8_t index, const Text& data, const Outcome& expected = kOk) {
    AbecsCmdGinOut out;
    std::memset(&out, 'k', sizeof out);
    const std::string digits = {static_cast<char>('0' + index / 10), static_cast<char>('0' + index % 10)};
    exchanges({"GIN002" + digits, data.where}, "GIN000" + data.text, expected, abecs_cmd_gin, index, &out);
    return out;
}

TEST(Gin, ReadsIndex00) {
    const auto out = gin(0, "100" + kIndex00).idx00;
    const Texts texts{out.mnName, out.model, out.modelDetail, out.soVer, out.specVer, out.manVers, out.serNum};
    EXPECT_EQ(texts, (Texts{"MANUFACTURER", "ABC", "DEF", "OS 1.2", "2.12", "MV 7", "SN-0000000000000001"}));
    EXPECT_TRUE(out.ctlsSup);
}

TEST(Gin, SplitsTheModelAtItsSemicolons) {
    const auto splits = [](const char* field, const char* model, const char* detail) {
        std::string fields = kIndex00;
        fields.replace(20, 19, padded(field, 19));
        const auto out = gin(0, "100" + fields).idx00;
        EXPECT_STREQ(out.model, model) << field;
        EXPECT_STREQ(out.modelDetail, detail) << field;
    };
    splits("PLAIN", "PLAIN", "");
    splits("ABCDEFGHIJKLMNOPQR;", "ABCDEFGHIJKLMNOPQR", "");
    splits("A;B C ;D", "A", "B C ");
}

TEST(Gin, ReadsTheOtherIndexes) {
    const auto idx02 = gin(2, "042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE 07").idx02;
    EXPECT_EQ((Texts{idx02.text1, idx02.text2, idx02.text3, idx02.text4, idx02.text5, std::to_string(idx02.number)}),
              (Texts{"AAAAAAA", "BBBBBBBBBBB", "CCCCCCCCCCCC", "DDD", "EE", "7"}));
    for (const bool dukpt : {true, false}) {
        const auto out =
            gin(3, std::string("042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H ") + (dukpt ? "T42" : " 42")).idx03;
        EXPECT_EQ((Texts{out.text1, out.text2, out.text3, out.text4, out.text5, out.text6, out.text7, out.text8}),
                  (Texts{"AAAAA", "BBB", "CCC", "DD", "EE", "FFFFFFFFFFFF", "GGG", "H"}));
        EXPECT_EQ(out.dukpt, dukpt);
        EXPECT_EQ(out.number, 42);
    }
    for (const uint8_t index : std::initializer_list<uint8_t>{1, 4, 99}) {
        const auto out = gin(index, "042ACQUIRER            BBBBBBBBBBBB CCC DD 99").idxOther;
        EXPECT_EQ((Texts{out.text1, out.text2, out.text3, out.text4, std::to_string(out.number)}),
                  (Texts{"ACQUIRER", "BBBBBBBBBBBB", "CCC", "DD", "99"}));
    }
}

TEST(Gin, RefusesMalformedAnswersAndKeepsWhatWasReadBefore) {
    gin(3, "041", error(kProtocol, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: 41)"));
    gin(3, "042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H t42", error(kProtocol, "Invalid value for GIN_DUKPT: 0x74"));
    const AbecsCmdGinOut none =
        gin(0, "042" + kIndex00, error(kProtocol, "Invalid RSP_LEN1 for GIN_ACQIDX == 0 (expected 100, read: 42)"));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&none), sizeof none), std::string(sizeof none, 'k'));
    std::string fields = kIndex00;
    fields[39] = 'X';
    const auto out = gin(0, "100" + fields, error(kProtocol, "Invalid value for GIN_CTLSSUP: 0x58")).idx00;
    EXPECT_STREQ(out.modelDetail, "DEF");
    EXPECT_EQ(std::memcmp(&out.ctlsSup, "k", 1), 0);
    fields[25] = '\x7F';
    EXPECT_STREQ(gin(0, "100" + fields, error(kIo, "Invalid character (0x7F) at position 5")).idx00.mnName,
                 "MANUFACTURER");
    const Raised badIndex = error(kIndex, "Invalid acqIdx: 100 (maximum is 99)");
    refuses(badIndex, abecs_cmd_gin, 100, nullptr);
}

class Gix : public testing::Test {
protected:
    // The map first holds something else, which goes whatever happens.
    void expect_gix(const std::vector<int32_t>& ids, const Text& request, const std::string& response,
                    const Outcome& expected, const Items& items) {
        map_.put(1);
        exchanges(request, response, expected, abecs_cmd_gix, ids.data(), ids.size(), map_.get());
        EXPECT_EQ(map_.items(), items) << response;
    }

    void expect_refused_untouched(const Refusal& refusal, const int32_t* ids, size_t count) {
        map_.put(1);
        refuses(refusal, abecs_cmd_gix, ids, count, map_.get());
        EXPECT_EQ(map_.items(), (Items{{1, ""}}));
    }

    ParamMap map_;
};

TEST_F(Gix, ReadsItemsOfBothBlocks) {
    const std::string one = "8001 0001 41"_hex;
    expect_gix({0x8001, 0x805A}, "GIX008" + "0001 0004 8001 805A"_hex,
               "GIX000018" + "8001 0006"_hex + "SN0042" + "805A 0004 00FF1617"_hex, kOk,
               {{0x8001, "SN0042"}, {0x805A, "00FF1617"_hex}});
    expect_gix({}, "GIX", "GIX000005" + one + "009" + "9305 0000 8002 0001 42"_hex, kOk,
               {{0x8001, "A"}, {0x8002, "B"}, {0x9305, ""}});
    expect_gix({}, "GIX", "GIX000005" + one + "001A",
               error(kIo, "Malformed packet (remaining bytes on BLK2 cannot be used)"), {});
}

TEST_F(Gix, ChecksItsArgumentsInTheirOrder) {
    const int32_t bad[65] = {0x1234};
    const int32_t negative[] = {0x8001, -1};
    const std::string invalid = "Invalid enumerator for AbecsCmdGixId_E at index ";
    expect_refused_untouched("'idListSize' (65) exceeds maximum allowed (64)", nullptr, 65);
    expect_refused_untouched("'idList' is NULL", nullptr, 1);
    expect_refused_untouched(invalid + "0: 4660 (1234)", bad, 64);
    expect_refused_untouched(invalid + "1: -1 (FFFFFFFF)", negative, 2);
    refuses("'out' is NULL", abecs_cmd_gix, nullptr, 0, nullptr);
}

TEST_F(Gix, KnowsTheIdsThatCanBeAsked) {
    const std::vector<std::pair<int32_t, int32_t>> valid{
        {0x8001, 0x800A}, {0x8010, 0x8016}, {0x8020, 0x8022}, {0x8030, 0x8036}, {0x805A, 0x805A},
        {0x8062, 0x8062}, {0x9000, 0x9063}, {0x9100, 0x9163}, {0x9200, 0x9263}, {0x9300, 0x9363}};
    Link link;
    // A valid list passes the ids' check and fails at the next, so that nothing has to be sent.
    for (int32_t id = 0x7FFE; id < 0x9400; ++id) {
        const bool known = std::any_of(valid.begin(), valid.end(),
                                       [&](const auto& range) { return range.first <= id && id <= range.second; });
        const Raised raised = raised_by([&] { abecs_cmd_gix(link.comm, &id, 1, nullptr); });
        EXPECT_EQ(raised == error(kArgument, "'out' is NULL"), known) << id;
    }
    expect_gix(std::vector<int32_t>(64, 0x8001), "GIX132" + "0001 0080"_hex + repeated("8001"_hex, 64), "GIX000", kOk,
               {});
}

TEST_F(Gix, AnIdOfAFamilyEndsTheCheck) {
    expect_gix({0x9000, 0x1234, -1, 0x1234567}, "GIX012" + "0001 0008 9000 1234 FFFF 4567"_hex, "GIX000", kOk, {});
    const int32_t ids[] = {0x8001, 0x1234, 0x9000};
    expect_refused_untouched("Invalid enumerator for AbecsCmdGixId_E at index 1: 4660 (1234)", ids, 3);
}

}  // namespace
