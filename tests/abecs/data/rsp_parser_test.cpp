// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_parser.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
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
    const std::pair<std::string, Read> cases[]{
        {"GIX000", {}},
        {"GIX000000", {}},
        {"GIX000010" + kSixBytes, {{0x8001, "123456"}}},
        {"GIX000019" + kSixBytes + kOneByte + kNoByte, {{0x8001, "123456"}, {0x8040, "7"}, {0x8022, ""}}},
        {"GIX000010" + kSixBytes + "005" + kOneByte, {{0x8001, "123456"}, {0x8040, "7"}}},
        {"GIX000010" + kSixBytes + "009" + kOneByte + kNoByte, {{0x8001, "123456"}, {0x8040, "7"}, {0x8022, ""}}},
        {"GIX000010" + kSixBytes + "000", {{0x8001, "123456"}}},
        {"GIX000000005" + kOneByte, {{0x8040, "7"}}},
    };
    for (const auto& [response, params] : cases) {
        SCOPED_TRACE(response);
        set(response);
        EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "GIX");
        EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), 0);
        EXPECT_EQ(read_all(), params);
    }
}

TEST_F(RspParser, LongBlocksAreCountedInFull) {
    const std::string block = "\x80\x4E\x03\xE3" + std::string(995, 'x');
    set("CEX000999" + block + "999" + block);
    EXPECT_EQ(read_all(), (Read{{0x804E, std::string(995, 'x')}, {0x804E, std::string(995, 'x')}}));
}

TEST_F(RspParser, BehindAnotherStatusNothingIsLookedAt) {
    set("GIX000010" + kSixBytes);  // whose parameter stays unread
    set("ERR010garbage");
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "ERR");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_INVCALL);
    EXPECT_EQ(read_all(), Read{});
}

TEST_F(RspParser, RefusesBadHeads) {
    const std::tuple<const char*, int16_t, const char*> cases[]{
        {"GIX00", KOR_RESULT_IO_ERROR, "Invalid packet (not enough data)"},
        {"G\rX000", KOR_RESULT_IO_ERROR, "Invalid character (0x0D) at position 1"},
        {"GIX001", KOR_RESULT_PROTOCOL_ERROR, "Unknown value for RSP_STAT: 001"},
        {"GIX00002", KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 3, available: 2)"},
        {"GIX0000x2", KOR_RESULT_IO_ERROR, "Invalid char (0x78) at index 1"},
        {"GIX000005four", KOR_RESULT_IO_ERROR, "Invalid packet (malformed)"},
        {"GIX000004four0", KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 3, available: 1)"},
        {"GIX000004four005four", KOR_RESULT_IO_ERROR, "Invalid packet (malformed)"},
        {"GIX000004four004four!", KOR_RESULT_IO_ERROR, "Invalid packet (unsupported block)"},
        {"NTM000033123456789012345678901234567890123", KOR_RESULT_PROTOCOL_ERROR, "Malformed notification"},
        {"NTM000004four004four", KOR_RESULT_PROTOCOL_ERROR, "Malformed notification"},
        {"NTM010", KOR_RESULT_PROTOCOL_ERROR, "NTM with invalid RSP_STAT: ABECS_RSP_STAT_ST_INVCALL"},
    };
    for (const auto& [response, code, detail] : cases) {
        SCOPED_TRACE(response);
        const support::ReturningRaises raises;
        set(response);
        EXPECT_EQ(raises.all(), support::errors(code, {detail}));
        EXPECT_NE(abecs_rsp_parser_get_stat(parser_), 0) << "must not look like success";
        EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
    }
}

TEST_F(RspParser, ABlockMustEndWithAParameterThatEndsInIt) {
    constexpr const char* kBlock1 = "Malformed packet (remaining bytes on BLK1 cannot be used)";
    constexpr const char* kBlock2 = "Malformed packet (remaining bytes on BLK2 cannot be used)";
    const std::tuple<std::string, size_t, int16_t, const char*> rows[]{
        {"GIX000005" + kNoByte + "x", 1, KOR_RESULT_IO_ERROR, kBlock1},
        {"GIX000003abc", 0, KOR_RESULT_IO_ERROR, kBlock1},
        {"GIX000004" + kNoByte + "007" + kNoByte + "xyz", 2, KOR_RESULT_IO_ERROR, kBlock2},
        {"GIX000005\x80\x40\0\x05"s + "x" + "004" + kNoByte, 0, KOR_RESULT_IO_ERROR, kBlock1},
        {"GIX000005\x80\x40\0\x02"s + "x", 0, KOR_RESULT_PROTOCOL_ERROR,
         "Malformed parameter (expected data length: 2, available: 1)"},
    };
    for (const auto& [response, good, code, detail] : rows) {
        set(response);
        for (size_t i = 0; i < good; ++i) { EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), param_); }
        EXPECT_RAISES(code, detail, abecs_rsp_parser_read_param(parser_, param_));
    }
}

TEST_F(RspParser, ReadsANotificationsText) {
    char text[33];
    set("NTM000012TIRE\xC9 CARTAO");
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "NTM");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), ABECS_RSP_STAT_ST_NOTIFICATION);
    EXPECT_STREQ(abecs_rsp_parser_read_notification(parser_, text), "TIRE\xC9 CARTAO");
    EXPECT_EQ(read_all(), Read{}) << "the text is consumed";
    set("NTM000");
    EXPECT_STREQ(abecs_rsp_parser_read_notification(parser_, text), "");
    set("NTM000005SALDO");
    EXPECT_EQ(abecs_rsp_parser_read_notification(parser_, nullptr), nullptr);
    EXPECT_EQ(packet_.take(), "");
    set("NTM000002A\r");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid character (0x0D) at position 1",
                  abecs_rsp_parser_read_notification(parser_, text));
    set("GKY000");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Response is not a notification",
                  abecs_rsp_parser_read_notification(parser_, text));
}

TEST_F(RspParser, ANewParserIsEmpty) {
    EXPECT_STREQ(abecs_rsp_parser_get_id(parser_), "");
    EXPECT_EQ(abecs_rsp_parser_get_stat(parser_), 0);
    EXPECT_EQ(abecs_rsp_parser_read_param(parser_, param_), nullptr);
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'responsePacket' is NULL",
                  abecs_rsp_parser_set_packet(parser_, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_rsp_parser_read_param(parser_, nullptr));
}

}  // namespace
