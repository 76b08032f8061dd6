// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Fnc, SendsTheAnswerOfTheAcquirer) {
    const auto sendsAnswer = [](const AbecsCmdFncData& data, const Text& request) {
        AbecsCmdFncResponse out{77, 0, "", 0, "", 0};
        exchanges(request, "FNC021", ABECS_RSP_STAT_ST_TABERR, abecs_cmd_fnc, &data, &out);
        EXPECT_EQ(out.decision, 77U);
    };
    sendsAnswer({0, "00", 0, "", 0, ""}, "FNC|010|00|00|000|000|003|000"_wire);
    sendsAnswer({1, "Z", 4, "9108aabb", 2, "9F26"}, "FNC|018|10|Z |004|9108AABB|000|007|002|9F26"_wire);
    sendsAnswer({0, "", 494, "", 498, "82"},
                "FNC|998|00|  |494"_wire + repeated("30", 494) + "000|999|498"_wire + repeated("30", 497) + "82");
}

TEST(Fnc, ChecksItsArgumentsInTheirOrder) {
    AbecsCmdFncData data{-1, "00", 1000, "", 1000, ""};
    AbecsCmdFncResponse out{};
    // Refused, and then mended.
    const auto refused = [&](const Refusal& refusal, auto& field, int32_t good) {
        refuses(refusal, abecs_cmd_fnc, &data, &out);
        field = static_cast<std::remove_reference_t<decltype(field)>>(good);
    };
    refuses("'cmdData' is NULL", abecs_cmd_fnc, nullptr, nullptr);
    refuses("'rspData' is NULL", abecs_cmd_fnc, &data, nullptr);
    refused("invalid cmdData->issDatLen: 1000 (max: 999)", data.issDatLen, 494);
    refused("invalid cmdData->tagsLen: 1000 (max: 999)", data.tagsLen, 498);
    for (const int32_t next : {2, 10, 9}) {
        refused("invalid cmdData->commSt: " + std::to_string(data.commSt), data.commSt, next);
    }
    std::memset(data.issDat, 'a', sizeof data.issDat);
    refused("Field does not have enough room for data", data.issDat[3], '\0');
}

// What was read before a fault stays, and no length says more than its text has room for.
TEST(Fnc, ReadsTheLastDecision) {
    const auto reads = [](const Text& response, const std::string& read, const std::string& emvData,
                          const std::string& isResults, const Outcome& expected = kOk) {
        const AbecsCmdFncData data{0, "00", 0, "", 0, ""};
        AbecsCmdFncResponse out{77, 78, "old", 79, "old", 80};
        exchanges({"FNC01000|00|000000|003000"_wire, response.where}, "FNC000" + response.text, expected, abecs_cmd_fnc,
                  &data, &out);
        EXPECT_EQ(std::to_string(out.decision) + " " + std::to_string(out.emvDataLen) + " "
                      + std::to_string(out.isResultsLen) + " " + std::to_string(out.acqDataLen),
                  read);
        EXPECT_EQ(out.emvData, emvData);
        EXPECT_EQ(out.isResults, isResults);
    };
    const auto noRoom = [](int size, int length) {
        return error(kArgument, "sizeTo (" + std::to_string(size)
                                    + ") is not enough to store field (length: " + std::to_string(length) + ")");
    };
    reads("999|1|003|9f2601|02|aB0C|007"_wire, "1 3 2 7", "9f2601", "aB0C");
    reads("000|2|002|3095|01|30|999|behind"_wire, "2 2 1 999", "95", "");
    reads("999|0|256"_wire + repeated("A", 512) + "50" + repeated("C", 100) + "009", "0 256 50 9", repeated("A", 512),
          repeated("C", 100));
    reads("999|5|257"_wire + repeated("AB", 257) + "00|000"_wire, "5 78 79 80", "", "old", noRoom(513, 514));
    reads("999|6|001AB|51"_wire + repeated("CD", 51) + "000", "6 1 79 80", "AB", "", noRoom(101, 102));
}

AbecsCmdGocData some_data() {
    AbecsCmdGocData data{};
    data.amount = 1000;
    data.cashback = 999999999999;
    data.connect = true;
    data.method = ABECS_CMD_GOC_METHOD_DUKPT_TDES;
    data.keyidx = 7;
    std::strcpy(data.wkenc, "00112233445566778899aabbccddeeff");
    std::strcpy(data.flrlimit, "00001388");
    std::strcpy(data.thrbrs, "abcd");
    data.tpbrs = 50;
    data.mtpbrs = 99;
    return data;
}

const std::string kHead =
    "000000001000|999999999999|01|0|307|00112233445566778899AABBCCDDEEFF|0|00001388|50|3030ABCD|99"_wire;
const std::string kNoTags = "003000|003000"_wire;

// The first length counts one byte more than the block has.
TEST(Goc, SendsTheBlockOfItsAcquirerAndAsManyTagsAsAreAnnounced) {
    AbecsCmdGocData data = some_data();
    data.acqpr.acqpr01.transactionType = 120;
    sends("GOC086" + kHead + "00" + kNoTags, abecs_cmd_goc, 3, &data);
    data.acqpr.acqpr01 = {99, true};
    sends("GOC089" + kHead + "03|991"_wire + kNoTags, abecs_cmd_goc, 1, &data);
    data.acqpr.acqpr02 = {"CART\xC3O"};
    sends("GOC118" + kHead + "32" + padded("CART\xC3O", 32) + kNoTags, abecs_cmd_goc, 2, &data);
    data.tags1len = 2;
    std::strcpy(data.tags1, "82");
    data.tags2len = 1;
    std::strcpy(data.tags2, "9f");
    sends("GOC086" + kHead + "00|007002|3082|005001|9F"_wire, abecs_cmd_goc, 0, &data);
    data.exclist = 1;
    data.connect = false;
    data.method = ABECS_CMD_GOC_METHOD_MK_WK_DES;
    std::memset(&data.riskman, 0x22, sizeof data.riskman);
    data.tags1len = data.tags2len = 128;
    std::memset(data.wkenc, 'a', sizeof data.wkenc);
    std::memset(data.flrlimit, 'b', 8);
    std::memset(data.thrbrs, 'c', 8);
    std::memset(data.tags1, 'd', 256);
    std::strcpy(data.tags2, "");
    sends("GOC|086|000000001000|999999999999|10|0|007"_wire + std::string(32, 'A')
              + "1|BBBBBBBB|50|CCCCCCCC|99|00|259128"_wire + std::string(256, 'D') + "259128" + repeated("30", 128),
          abecs_cmd_goc, 0, &data);
}

TEST(Goc, ChecksItsArgumentsInTheirOrder) {
    AbecsCmdGocData data = some_data();
    data.exclist = 2;
    data.method = static_cast<AbecsCmdGocMethod_E>(4);
    data.keyidx = data.tpbrs = data.mtpbrs = data.acqpr.acqpr01.transactionType = 100;
    data.tags1len = data.tags2len = 129;
    // Refused, and then mended.
    const auto refused = [&](const Refusal& refusal, auto& field, auto good) {
        refuses(refusal, abecs_cmd_goc, 1, &data);
        field = static_cast<std::remove_reference_t<decltype(field)>>(good);
    };
    refuses("'gcrAcqIdx' is too big (max: 99, requested: 100)", abecs_cmd_goc, 100, nullptr);
    refuses("'gocData' is NULL", abecs_cmd_goc, 99, nullptr);
    refused("invalid value for gocData->exclist: 2", data.exclist, 1);
    refused("Invalid enumerator for AbecsCmdGocMethod_E: 4", data.method, ABECS_CMD_GOC_METHOD_DUKPT_DES);
    refused("invalid value for gocData->keyidx: 100", data.keyidx, 99);
    refused("invalid value for gocData->tpbrs: 100", data.tpbrs, 99);
    refused("invalid value for gocData->mtpbrs: 100", data.mtpbrs, 99);
    refused("invalid value for gocData->acqpr.acqpr01.transactionType (max: 99, requested: 100)",
            data.acqpr.acqpr01.transactionType, 99);
    refused("invalid value for gocData->tags1len: 129", data.tags1len, 128);
    refused("invalid value for gocData->tags2len: 129", data.tags2len, 128);
    std::strcpy(data.wkenc, "");
    data.amount = 1000000000000;
    refused("Number length (13) is greater than field length (12)", data.amount, 0);
}

// A text is never cut: one digit, or one tag, more than what is announced stops the command. Without a NUL it ends with
// its member.
TEST(Goc, RefusesTextsThatAreLongerThanTheirFields) {
    const auto refused = [](auto fill) {
        AbecsCmdGocData data = some_data();
        fill(data);
        refuses("Field does not have enough room for data", abecs_cmd_goc, 2, &data);
    };
    refused([](auto& data) { std::memset(data.flrlimit, '5', sizeof data.flrlimit); });
    refused([](auto& data) { std::memset(data.acqpr.acqpr02.data, '5', sizeof data.acqpr.acqpr02.data); });
    refused([](auto& data) { data.tags1len = 128, std::memset(data.tags1, '5', sizeof data.tags1); });
    refused([](auto& data) { data.tags2len = 1, std::strcpy(data.tags2, "9F02"); });
}

TEST(Goc, ReadsTheDecision) {
    const std::string block = "000102030405060708090A0B0C0D0E0FFFFEFDFCFBFAF9F8F7F6F5F4F3F2F1F0EFEEEDEC"_hex;
    const auto reads = [&](const Text& received, const char* stored, const std::string& rest, size_t length,
                           const Outcome& expected = kOk) {
        AbecsCmdGocResponse out{};
        out.emvDataLen = 3;
        polls({"GOC000999" + received.text + block + rest, received.where}, expected, abecs_cmd_goc_response, &out,
              nullptr);
        std::string flags;
        for (const int flag :
             {+out.decision, +out.signature, +out.pinOffline, +out.pinOfflineErrors, +out.pinBlocked, +out.pinOnline}) {
            flags += std::to_string(flag);
        }
        EXPECT_EQ(flags, stored);
        EXPECT_EQ(std::string(out.pinBlock, out.pinBlock + 16) + std::string(out.ksn, out.ksn + 20), block);
        EXPECT_EQ(out.emvDataLen, length);
        if (expected == kOk) { EXPECT_EQ(std::string(out.emvData, out.emvData + length), rest.substr(3, length)); }
    };
    const Raised tooMany = error(
        kArgument, "Destination array does not have enough size to store all data (requested: 513, available: 512)");
    reads("201300", "201300", "004e26A007", 4);
    reads("090011", "010011", "512" + std::string(512, 'e') + "007", 512);
    reads("000020", "000010", "513" + std::string(513, 'e') + "007", 3, tooMany);
}

}  // namespace
