// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/exchange.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "quorvel/kor/exception.h"
#include "tests/abecs/cmd/param_map.h"
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

TEST(Frame, NothingIsLockedWhenSendingFails) {
    Link link;
    link.peer.expect(support::frame("ABC")).send("04"_hex);
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (unknown packet response: 0x4)",
                  abecs::send(link.comm, kAbc, Request::bare()));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Frame, PollsParameters) {
    Link link;
    const support::ParamMap map;
    const AbecsRspParamValue stale{};
    abecs_rsp_param_map_put(map.get(), 1, &stale, false);
    const auto poll = [&] { return abecs::poll(link.comm, kAbc, Response::into(map.get()), nullptr); };
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "ABC was not sent yet", poll());
    EXPECT_EQ(map.items().size(), 1U) << "what was not sent leaves the map alone";
    link.peer.request("ABC").response("NTM000002HI").response("ABC000006" + "804D 0002"_hex + "07");
    EXPECT_EQ(abecs::send(link.comm, kAbc, Request::bare()), 0);
    EXPECT_EQ(poll(), -2);
    EXPECT_TRUE(map.items().empty());
    EXPECT_EQ(poll(), 0);
    ASSERT_EQ(map.items(), (support::ParamMap::Items{{0x804D, "07"}}));
    EXPECT_EQ(abecs_rsp_param_map_get(map.get(), 0x804D)->data[2], '\0') << "a zero stands behind the value";
}

TEST(Frame, ABuilderCanBeSentAgain) {
    Link link;
    AbecsCmdBuilder* builder = abecs_cmd_builder_new();
    AbecsParam* param = abecs_param_new();
    abecs_param_set_id(param, 6);
    abecs_param_write_byte(param, 0x41);
    abecs_cmd_builder_add_param(builder, param);
    const std::string sent = "ABC005" + "0006 0001 41"_hex;
    link.peer.request(sent).response("ABC000").expect(support::frame(sent)).send("04"_hex).request(sent);
    link.peer.response("ABC000");
    auto call = [&] { return abecs::call(link.comm, kAbc, Request::built(builder), Response::status()); };
    EXPECT_NO_RAISE(call());
    EXPECT_EQ(support::raised_by(call).code, KOR_RESULT_PROTOCOL_ERROR);
    EXPECT_NO_RAISE(call());
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

}  // namespace
