// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/exchange.h"

#include <chrono>
#include <utility>

#include "tests/abecs/cmd/commands.h"

namespace {

using namespace std::chrono_literals;
using namespace support;
using abecs::Request;
using abecs::Response;

constexpr abecs::Command kAbc{.id = "ABC"};

class Exchange : public testing::Test {
protected:
    Outcome called(Request request) {
        return outcome_of([&] { return abecs::call(link_.comm, kAbc, std::move(request), Response::status()); });
    }

    Link link_;
    const Raised unknown_ = error(kProtocol, "Protocol error (unknown packet response: 0x4)");
};

TEST_F(Exchange, NothingIsLockedWhenSendingFails) {
    link_.peer.expect(support::frame("ABC")).send("04"_hex);
    EXPECT_EQ(outcome_of([&] { return abecs::send(link_.comm, kAbc, Request::bare()); }), unknown_);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
}

TEST_F(Exchange, PollsParameters) {
    const ParamMap map;
    map.put(1);
    const auto poll = [&] { return abecs::poll(link_.comm, kAbc, Response::into(map.get()), nullptr); };
    EXPECT_EQ(outcome_of(poll), error(kState, "ABC was not sent yet"));
    EXPECT_EQ(map.items().size(), 1U) << "what was not sent leaves the map alone";
    link_.peer.request("ABC").response("NTM000002HI").response("ABC000006" + "804D 0002"_hex + "07");
    EXPECT_EQ(abecs::send(link_.comm, kAbc, Request::bare()), kOk);
    EXPECT_EQ(poll(), ABECS_RSP_STAT_ST_NOTIFICATION);
    EXPECT_TRUE(map.items().empty());
    EXPECT_EQ(poll(), kOk);
    ASSERT_EQ(map.items(), (ParamMap::Items{{0x804D, "07"}}));
    EXPECT_EQ(abecs_rsp_param_map_get(map.get(), 0x804D)->data[2], '\0') << "a zero stands behind the value";
}

TEST_F(Exchange, ABuilderCanBeSentAgain) {
    AbecsCmdBuilder* builder = abecs_cmd_builder_new();
    AbecsParam* param = abecs_param_new();
    abecs_param_set_id(param, 6);
    abecs_param_write_byte(param, 0x41);
    abecs_cmd_builder_add_param(builder, param);
    const std::string sent = "ABC005" + "0006 0001 41"_hex;
    for (const bool fails : {false, true, false}) {
        link_.peer.expect(support::frame(sent)).send(fails ? "04"_hex : "06"_hex + support::frame("ABC000"));
        EXPECT_EQ(called(Request::built(builder)), fails ? unknown_ : Outcome(kOk));
    }
    abecs_param_delete(&param);
    abecs_cmd_builder_delete(&builder);
}

TEST_F(Exchange, ARequestThatFailsSendsNothing) {
    const auto write = [](AbecsPacket* packet) { abecs_packet_write_field_n(packet, 100, 2); };
    EXPECT_EQ(called(Request::fields(write)), error(kArgument, "Number length (3) is greater than field length (2)"));
    link_.peer.expect_silence(50ms).settle();
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

}  // namespace
