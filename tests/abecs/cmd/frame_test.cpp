// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/frame.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "quorvel/kor/exception.h"
#include "quorvel/kor/map.h"
#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/wire.h"

namespace {

using namespace std::chrono_literals;
using namespace support::literals;
using abecs::Command;
using abecs::Request;
using abecs::Response;
using support::Link;

constexpr Command kAbc{.id = "ABC"};
constexpr Command kNamed{.id = "GEN", .name = "GEN/04/03"};

int32_t send(Link& link, const Command& command) {
    int32_t result = -99;
    EXPECT_NO_RAISE(result = abecs::send(link.comm, command, Request::bare()));
    return result;
}

int32_t poll(Link& link, const Command& command, const Response& response, char* text) {
    int32_t result = -99;
    EXPECT_NO_RAISE(result = abecs::poll(link.comm, command, response, text));
    return result;
}

int32_t call(Link& link, const Command& command, const Request& request) {
    int32_t result = -99;
    EXPECT_NO_RAISE(result = abecs::call(link.comm, command, request, Response::status()));
    return result;
}

TEST(Frame, BlocksTheLinkUntilTheFinalAnswer) {
    Link link;
    link.peer.request("ABC")
        .response(
            "NTM000"
            "005HELLO")
        .response("NTM000")
        .response(
            "ABC000"
            "00142");
    EXPECT_EQ(send(link, kAbc), 0);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "ABC");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Connection is blocked waiting for ABC response",
                  abecs::call(link.comm, kAbc, Request::bare(), Response::status()));

    char text[33] = "old";
    EXPECT_EQ(poll(link, kAbc, Response::status(), text), -2);
    EXPECT_STREQ(text, "HELLO");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 3, available: 0)",
                  abecs::poll(link.comm, kAbc, Response::status(), nullptr));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "ABC") << "a malformed answer leaves the link blocked";

    uint64_t value = 0;
    const auto read = [&](AbecsPacket* packet) {
        abecs_packet_read_field_n(packet, 3);
        value = abecs_packet_read_field_n(packet, 2);
    };
    EXPECT_EQ(poll(link, kAbc, Response::fields(read), nullptr), 0);
    EXPECT_EQ(value, 42U);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "ABC was not sent yet",
                  abecs::poll(link.comm, kAbc, Response::status(), nullptr));
}

TEST(Frame, ATimeOutKeepsTheCommandPending) {
    Link link;
    link.peer.request("GEN").wait(2500ms).response("ERR013");
    EXPECT_EQ(send(link, kNamed), 0);
    const support::Elapsed elapsed;
    EXPECT_EQ(poll(link, kNamed, Response::status(), nullptr), -1);
    EXPECT_TRUE(elapsed.between(2s, 5s));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GEN/04/03");
    EXPECT_EQ(poll(link, kNamed, Response::status(), nullptr), 13);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Frame, CanAbortsAPendingCommand) {
    Link link;
    link.peer.request("ABC").accept_can().request("ABC").response("ABC000");
    EXPECT_EQ(send(link, kAbc), 0);
    EXPECT_NO_RAISE(abecs_comm_send_can(link.comm));
    EXPECT_EQ(call(link, kAbc, Request::bare()), 0);
}

TEST(Frame, NothingIsLockedWhenSendingFails) {
    Link link;
    link.peer.expect(support::frame("ABC")).send("04"_hex);
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (unknown packet response: 0x4)",
                  abecs::send(link.comm, kAbc, Request::bare()));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Frame, PollsParameters) {
    Link link;
    AbecsRspParamMap* map = abecs_rsp_param_map_new();
    const AbecsRspParamValue stale{};
    abecs_rsp_param_map_put(map, 1, &stale, false);
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "ABC was not sent yet",
                  abecs::poll(link.comm, kAbc, Response::into(map), nullptr));
    EXPECT_EQ(kor_map_size(map), 1U) << "what was not sent leaves the map alone";

    link.peer.request("ABC")
        .response(
            "NTM000"
            "002HI")
        .response("XYZ000")
        .response(
            "ABC000"
            "006"
            + "804D 0002"_hex + "07");
    EXPECT_EQ(send(link, kAbc), 0);
    char text[33] = "";
    EXPECT_EQ(poll(link, kAbc, Response::into(map), text), -2);
    EXPECT_STREQ(text, "HI");
    EXPECT_EQ(kor_map_size(map), 0U);
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "(ABC) Invalid RSP_ID: XYZ)",
                  abecs::poll(link.comm, kAbc, Response::into(map), text));
    EXPECT_EQ(poll(link, kAbc, Response::into(map), text), 0);
    const AbecsRspParamValue* value = abecs_rsp_param_map_get(map, 0x804D);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->size, 2U);
    EXPECT_STREQ(reinterpret_cast<const char*>(value->data), "07") << "a zero stands behind the value";
    kor_map_delete(&map);
}

TEST(Frame, NotificationsAreErrorsOutsideAWait) {
    for (const bool parsed : {false, true}) {
        Link link;
        link.peer.request("ABC").response(
            "NTM000"
            "002HI");
        const Response response = parsed ? Response::parsed_status() : Response::status();
        EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "(ABC) Invalid RSP_ID: NTM)",
                      abecs::call(link.comm, kAbc, Request::bare(), response));
    }
}

TEST(Frame, ABuilderCanBeSentAgain) {
    Link link;
    AbecsCmdBuilder* builder = abecs_cmd_builder_new();
    AbecsParam* param = abecs_param_new();
    abecs_param_set_id(param, 6);
    abecs_param_write_byte(param, 0x41);
    abecs_cmd_builder_add_param(builder, param);
    const std::string sent = "ABC005" + "0006 0001 41"_hex;
    link.peer.request(sent)
        .response("ABC000")
        .expect(support::frame(sent))
        .send("04"_hex)
        .request(sent)
        .response("ABC000");
    EXPECT_EQ(call(link, kAbc, Request::built(builder)), 0);
    EXPECT_EQ(
        support::raised_by([&] { abecs::call(link.comm, kAbc, Request::built(builder), Response::status()); }).code,
        KOR_RESULT_PROTOCOL_ERROR);
    EXPECT_EQ(call(link, kAbc, Request::built(builder)), 0);
    abecs_param_delete(&param);
    abecs_cmd_builder_delete(&builder);
}

TEST(Frame, ARequestThatFailsSendsNothing) {
    Link link;
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Number length (3) is greater than field length (2)",
                  abecs::call(link.comm, kAbc,
                              Request::fields([](AbecsPacket* packet) { abecs_packet_write_field_n(packet, 100, 2); }),
                              Response::status()));
    link.peer.expect_silence(50ms);
    link.peer.settle();
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(Frame, RaisesThatReturnGiveAFinalStatus) {
    Link link;
    const support::ReturningRaises handler;
    EXPECT_EQ(abecs::poll(link.comm, kAbc, Response::status(), nullptr), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs::poll(nullptr, kAbc, Response::status(), nullptr), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs::send(nullptr, kAbc, Request::bare()), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(abecs::call(nullptr, kAbc, Request::bare(), Response::status()), ABECS_RSP_STAT_ST_INTERR);
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
    EXPECT_EQ(handler.all().size(), 4U);
}

}  // namespace
