// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_parser.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "quorvel/abecs/rsp_stat.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

using namespace std::string_literals;
using namespace support;

namespace {

// 5, 10 and 4 bytes on the wire.
const std::string kOneByte = "\x80\x40\0\x01"s + "7";
const std::string kSixBytes = "\x80\x01\0\x06"s + "123456";
const std::string kNoByte = "\x80\x22\0\0"s;

class RspParser : public testing::Test {
protected:
    ~RspParser() override { abecs_rsp_parser_delete(&parser_); }

    void set(const std::string& response) {
        packet_.fill(response);
        abecs_rsp_parser_set_packet(parser_, packet_);
    }

    using Read = std::vector<std::pair<uint16_t, std::string>>;

    // Every parameter up to the end, which has to stay the end.
    Read read_all() {
        Read read;
        while (abecs_rsp_parser_read_param(parser_, param_) != nullptr) {
            const uint16_t id = abecs_param_get_id(param_);
            read.emplace_back(id, param_.take());
        }
        EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
        return read;
    }

    AbecsRspParser* parser_ = abecs_rsp_parser_new();
    Packet packet_;
    Param param_;
};

TEST_F(RspParser, ReadsParametersAcrossTheBlocks) {
    const std::string longest = "\x80\x4E\x03\xE3" + std::string(995, 'x');
    const std::pair<std::string, Read> cases[]{
        {"GIX000", {}},
        {"GIX000010" + kSixBytes, {{0x8001, "123456"}}},
        {"GIX000019" + kSixBytes + kOneByte + kNoByte, {{0x8001, "123456"}, {0x8040, "7"}, {0x8022, ""}}},
        {"GIX000010" + kSixBytes + "005" + kOneByte, {{0x8001, "123456"}, {0x8040, "7"}}},
        {"GIX000010" + kSixBytes + "009" + kOneByte + kNoByte, {{0x8001, "123456"}, {0x8040, "7"}, {0x8022, ""}}},
        {"GIX000000005" + kOneByte, {{0x8040, "7"}}},
        {"GIX000999" + longest + "999" + longest, {{0x804E, std::string(995, 'x')}, {0x804E, std::string(995, 'x')}}},
    };
    for (const auto& [response, params] : cases) {
        SCOPED_TRACE(response);
        set(response);
        EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "GIX");
        EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(read_all(), params);
    }
}

TEST_F(RspParser, BehindAnotherStatusNothingIsLookedAt) {
    set("GIX000010" + kSixBytes);  // whose parameter stays unread
    set("ERR010garbage");
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "ERR");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_INVCALL);
    EXPECT_EQ(read_all(), Read{});
}

TEST_F(RspParser, RefusesBadHeads) {
    const auto refused = [&](const Raised& error, const char* response) {
        const ReturningRaises raises;
        set(response);
        EXPECT_EQ(raises.all(), std::vector{error}) << response;
        EXPECT_NE(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_OK) << "must not look like success";
        EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
    };
    refused(error(kIo, "Invalid packet (not enough data)"), "GIX00");
    refused(error(kIo, "Invalid character (0x0D) at position 1"), "G\rX000");
    refused(error(kProtocol, "Unknown value for RSP_STAT: 001"), "GIX001");
    refused(error(kIo, "Invalid packet (malformed)"), "GIX000005four");
    refused(error(kIo, "Invalid char (0x78) at index 0"), "GIX000x05four");
    refused(error(kIo, "Invalid char (0x78) at index 1"), "GIX000004four0x4four");
    refused(error(kIo, "Invalid packet (malformed)"), "GIX000004four005four");
    refused(error(kIo, "Invalid packet (unsupported block)"), "GIX000004four004four!");
    refused(error(kProtocol, "Malformed notification"), "NTM000033123456789012345678901234567890123");
    refused(error(kProtocol, "Malformed notification"), "NTM000004four004four");
    refused(error(kProtocol, "NTM with invalid RSP_STAT: ABECS_RSP_STAT_ST_INVCALL"), "NTM010");
}

TEST_F(RspParser, ABlockMustEndWithAParameterThatEndsInIt) {
    // So many parameters can be read before.
    const auto refused = [&](const Raised& error, size_t good, const std::string& blocks) {
        set("GIX000" + blocks);
        for (size_t i = 0; i < good; ++i) { EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), param_); }
        const ReturningRaises raises;
        EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
        EXPECT_EQ(raises.all(), std::vector{error});
    };
    const Raised block1 = error(kIo, "Malformed packet (remaining bytes on BLK1 cannot be used)");
    const Raised block2 = error(kIo, "Malformed packet (remaining bytes on BLK2 cannot be used)");
    const Raised tooLong = error(kProtocol, "Malformed parameter (expected data length: 2, available: 1)");
    refused(block1, 1, "005" + kNoByte + "x");
    refused(block2, 2, "004" + kNoByte + "007" + kNoByte + "xyz");
    refused(block1, 0, "005\x80\x40\0\x05"s + "x" + "004" + kNoByte);
    refused(tooLong, 0, "005\x80\x40\0\x02"s + "x");
    set("GIX000000005" + kOneByte);
    abecs_packet_read_field_n(packet_, 1);  // a digit of the block's length, which the caller has no business to read
    const ReturningRaises raises;
    EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
    EXPECT_EQ(raises.all(), std::vector{error(kIo, "Invalid char (0x80) at index 2")});
}

TEST_F(RspParser, ReadsANotificationsText) {
    char text[33];
    set("NTM000012TIRE\xC9 CARTAO");
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "NTM");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_NOTIFICATION);
    EXPECT_STREQ(abecs_rsp_parser_read_notification(parser_, text), "TIRE\xC9 CARTAO");
    EXPECT_EQ(read_all(), Read{}) << "the text is consumed";
    set("NTM000002A\r");
    EXPECT_RAISES(kIo, "Invalid character (0x0D) at position 1", abecs_rsp_parser_read_notification(parser_, text));
    set("GKY000");
    EXPECT_RAISES(kState, "Response is not a notification", abecs_rsp_parser_read_notification(parser_, text));
}

TEST_F(RspParser, ANewParserIsEmpty) {
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
    EXPECT_RAISES(kArgument, "'responsePacket' is NULL", abecs_rsp_parser_set_packet(parser_, nullptr));
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_rsp_parser_read_param(parser_, nullptr));
}

}  // namespace
