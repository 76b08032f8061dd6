// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/goc.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using support::repeated;

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

void expect_sent(uint8_t acquirer, const AbecsCmdGocData& data, const std::string& request,
                 support::Peer::Where where = {}) {
    AbecsCmdGocResponse out{};
    const auto send = [&](AbecsComm* link) { abecs_cmd_goc(link, acquirer, &data); };
    support::expect_exchange("GOC" + request, send, abecs_cmd_goc_response, &out, "gocResponse", where);
}

// The first length counts one byte more than the block has.
TEST(Goc, SendsTheBlockOfItsAcquirer) {
    AbecsCmdGocData data = some_data();
    expect_sent(0, data, "086" + kHead + "00" + kNoTags);
    data.acqpr.acqpr01.transactionType = 120;
    expect_sent(3, data, "086" + kHead + "00" + kNoTags);
    data.acqpr.acqpr01 = {99, true};
    expect_sent(1, data, "089" + kHead + "03|991"_wire + kNoTags);
    data.acqpr.acqpr02 = {"CART\xC3O"};
    expect_sent(2, data, "118" + kHead + "32|CART\xC3O"_wire + std::string(26, ' ') + kNoTags);
    std::memset(data.acqpr.acqpr02.data, 'x', 32);
    expect_sent(2, data, "118" + kHead + "32" + std::string(32, 'x') + kNoTags);
}

TEST(Goc, SendsAsManyTagsAsAreAnnounced) {
    AbecsCmdGocData data = some_data();
    data.tags1len = 2;
    std::strcpy(data.tags1, "82");
    data.tags2len = 1;
    std::strcpy(data.tags2, "9f");
    expect_sent(0, data, "086" + kHead + "00|007002|3082|005001|9F"_wire);
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
    expect_sent(0, data,
                "086|000000001000|999999999999|10|0|007"_wire + std::string(32, 'A')
                    + "1|BBBBBBBB|50|CCCCCCCC|99|00|259128"_wire + std::string(256, 'D') + "259128"
                    + repeated("30", 128));
}

TEST(Goc, ChecksItsArgumentsInTheirOrder) {
    Link link;
    AbecsCmdGocData data = some_data();
    data.exclist = 2;
    data.method = static_cast<AbecsCmdGocMethod_E>(4);
    data.keyidx = data.tpbrs = data.mtpbrs = data.acqpr.acqpr01.transactionType = 100;
    data.tags1len = data.tags2len = 129;
    data.wkenc[1] = 'G';
    // Refused, and then mended.
    const auto refused = [&](const char* detail, auto& field, auto good) {
        EXPECT_REFUSED(2, detail, abecs_cmd_goc(link.comm, 1, &data));
        field = static_cast<std::remove_reference_t<decltype(field)>>(good);
    };
    EXPECT_REFUSED(2, "'gcrAcqIdx' is too big (max: 99, requested: 100)", abecs_cmd_goc(link.comm, 100, nullptr));
    EXPECT_REFUSED(2, "'gocData' is NULL", abecs_cmd_goc(link.comm, 99, nullptr));
    refused("invalid value for gocData->exclist: 2", data.exclist, 1);
    refused("Invalid enumerator for AbecsCmdGocMethod_E: 4", data.method, -1);
    refused("Invalid enumerator for AbecsCmdGocMethod_E: -1", data.method, ABECS_CMD_GOC_METHOD_DUKPT_DES);
    refused("invalid value for gocData->keyidx: 100", data.keyidx, 99);
    refused("invalid value for gocData->tpbrs: 100", data.tpbrs, 99);
    refused("invalid value for gocData->mtpbrs: 100", data.mtpbrs, 99);
    refused("invalid value for gocData->acqpr.acqpr01.transactionType (max: 99, requested: 100)",
            data.acqpr.acqpr01.transactionType, 99);
    refused("invalid value for gocData->tags1len: 129", data.tags1len, 128);
    refused("invalid value for gocData->tags2len: 129", data.tags2len, 128);
    refused("Invalid hex byte at index 0", data.amount, 1000000000000);
    refused("Number length (13) is greater than field length (12)", data.amount, 0);
}

// A text is never cut: one digit, or one tag, more than what is announced stops the command. Without a NUL it ends with
// its member.
TEST(Goc, RefusesTextsThatAreLongerThanTheirFields) {
    Link link;
    const auto refused = [&](auto fill) {
        AbecsCmdGocData data = some_data();
        fill(data);
        EXPECT_REFUSED(2, "Field does not have enough room for data", abecs_cmd_goc(link.comm, 2, &data));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    };
    refused([](auto& data) { std::memset(data.flrlimit, '5', sizeof data.flrlimit); });
    refused([](auto& data) { std::memset(data.thrbrs, '5', sizeof data.thrbrs); });
    refused([](auto& data) { std::memset(data.acqpr.acqpr02.data, '5', sizeof data.acqpr.acqpr02.data); });
    refused([](auto& data) { std::strcpy(data.tags1, "9F"); });
    refused([](auto& data) {
        data.tags1len = 128;
        std::memset(data.tags1, '5', sizeof data.tags1);
    });
    refused([](auto& data) {
        data.tags2len = 1;
        std::strcpy(data.tags2, "9F02");
    });
}

TEST(Goc, ReadsTheDecision) {
    const std::string block = "000102030405060708090A0B0C0D0E0FFFFEFDFCFBFAF9F8F7F6F5F4F3F2F1F0EFEEEDEC"_hex;
    const auto reads = [&](const char* received, const char* stored, const std::string& rest, size_t length,
                           const support::Raised& error) {
        Link link;
        link.peer.request("GOC086" + kHead + "00" + kNoTags).response("GOC000999" + (received + block) + rest);
        const AbecsCmdGocData data = some_data();
        link.call(abecs_cmd_goc)(0, &data);
        AbecsCmdGocResponse out{};
        out.emvDataLen = 3;
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_goc_response(link.comm, &out, nullptr); }), error);
        std::string flags;
        for (const int flag :
             {+out.decision, +out.signature, +out.pinOffline, +out.pinOfflineErrors, +out.pinBlocked, +out.pinOnline}) {
            flags += std::to_string(flag);
        }
        EXPECT_EQ(flags, stored);
        EXPECT_EQ(std::string(out.pinBlock, out.pinBlock + 16) + std::string(out.ksn, out.ksn + 20), block);
        EXPECT_EQ(out.emvDataLen, length);
        if (error.code == 0) { EXPECT_EQ(std::string(out.emvData, out.emvData + length), rest.substr(3, length)); }
    };
    reads("201300", "201300", "004e26A007", 4, {});
    reads("090011", "010011", "512" + std::string(512, 'e') + "007", 512, {});
    reads("010900", "010900", "000007behind", 0, {});
    reads("000020", "000010", "513" + std::string(513, 'e') + "007", 3,
          support::error(2,
                         "Destination array does not have enough size to store all data (requested: 513, "
                         "available: 512)"));
    reads("000020", "000010", "512" + std::string(511, 'e'), 3,
          support::error(6, "Buffer does not have enough data (requested: 512, available: 511)"));
    reads("002002", "001001", "001e", 1,
          support::error(6, "Buffer does not have enough data (requested: 3, available: 0)"));
}

}  // namespace
