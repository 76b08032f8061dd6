// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <regex>

#include "tests/hpp/memory.h"
#include "tests/hpp/rows.h"

namespace {

using namespace hpp;
using namespace quorvel;
using namespace std::chrono_literals;

template <typename Value>
concept Printable = requires(Value value) {
    std::cout << value;
};
static_assert(!Printable<Secret> && Printable<std::string_view>);
static_assert(!std::equality_comparable<Secret>);
static_assert(
    !std::is_copy_constructible_v<
        Link> && !std::is_copy_constructible_v<Session> && !std::is_copy_constructible_v<Wait<Key>> && std::is_nothrow_move_constructible_v<Link>);
static_assert(!std::is_constructible_v<Whole<uint64_t>, double> && !std::is_constructible_v<Whole<uint8_t>, bool>);
static_assert(std::is_nothrow_copy_constructible_v<Error> && std::is_nothrow_copy_constructible_v<Refused>);

// A session whose events are written down.
class Waits : public testing::Test {
protected:
    Waits() {
        world.link.observe([this](const Event& event) {
            constexpr const char* kTypes[] = {"sent", "received", "rejected", "damaged", "CAN", "time-out"};
            const std::string type = kTypes[static_cast<size_t>(event.type)];
            said += type == "CAN" ? "CAN " : type + ":" + std::string(event.command) + " ";
            if (throwing) { throw 42; }
        });
        world.answer({});
    }

    // What has been said since the last time.
    std::string events() { return std::exchange(said, ""); }
    template <typename Act>
    std::string thrown_by(Act act) {
        try {
            act();
        } catch (const std::exception& error) { return error.what(); }
        return "nothing";
    }
    void expect_usable() {
        world.answer({"DSP000"});
        EXPECT_TRUE(world.session.run(Dsp{"HI"}).ok());
    }

    std::string said;
    bool throwing = false;
    World world;
};

TEST_F(Waits, EndAtTheirDeadlineWithCan) {
    const memory::Time start = world.line.now();
    try {
        static_cast<void>(world.session.start(Gky{}).get(5s));
        FAIL() << "there is no answer";
    } catch (const Ended& ended) { EXPECT_EQ(ended.why(), Ended::Why::deadline); }
    EXPECT_GE(world.line.now() - start, 5s);
    EXPECT_LT(world.line.now() - start, 5200ms);
    EXPECT_EQ(events(), "sent:GKY CAN ");
    expect_usable();
}

// Byte after byte, each in time, a frame of this length takes for ever.
TEST_F(Waits, EndAtTheirDeadlineWhateverDribblesIn) {
    world.pad.answer({"\x16" + std::string(40, 'x')});
    const memory::Time start = world.line.now();
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.start(Gky{}).get(1500ms)); }),
              "[ENDED] the deadline has passed");
    EXPECT_LT(world.line.now() - start, 2100ms) << "half a second of it is the silence before CAN";
    EXPECT_EQ(world.link.limit(), 0ms);
    EXPECT_EQ(events(), "sent:GKY time-out:GKY CAN ");
}

TEST_F(Waits, AreCancelledOnceAndForAll) {
    std::stop_source source;
    source.request_stop();
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.start(Gky{}).get(source.get_token())); }),
              "[ENDED] the wait was cancelled");
    {
        auto wait = world.session.start(Gky{});
        EXPECT_FALSE(wait.poll());
        world.link.cancel();
        EXPECT_EQ(thrown_by([&] { static_cast<void>(wait.poll()); }), "[ENDED] the wait was cancelled");
        EXPECT_EQ(thrown_by([&] { static_cast<void>(wait.get()); }), "[ENDED] the wait was cancelled") << "once more";
    }
    EXPECT_EQ(events(), "sent:GKY CAN sent:GKY CAN ");
    world.link.cancel();
    world.answer({"GKY004"});
    EXPECT_EQ(*world.session.run(Gky{}, 1s), Key::f1) << "nothing was on that could have been cancelled";
}

TEST_F(Waits, TellOfNoticesAndMayBeCancelledByThem) {
    world.answer({"NTM000002HI"});
    auto wait = world.session.start(Gky{});
    std::string heard;
    wait.on_notice([&](std::string_view text) { heard += text, wait.cancel(); });
    EXPECT_EQ(thrown_by([&] { static_cast<void>(wait.get()); }), "[ENDED] the wait was cancelled");
    EXPECT_EQ(heard, "HI");
}

TEST_F(Waits, LeaveNothingBehindWhenTheirCallersThrow) {
    world.answer({"NTM000002HI"});
    EXPECT_EQ(thrown_by([&] {
                  auto wait = world.session.start(Gky{});
                  wait.on_notice([](std::string_view) { throw std::runtime_error("of the caller"); });
                  static_cast<void>(wait.get());
              }),
              "of the caller");
    EXPECT_EQ(events(), "sent:GKY received:NTM CAN ");
    throwing = true;
    world.answer({"DSP000"});
    EXPECT_TRUE(world.session.run(Dsp{"HI"}).ok()) << "a log stops nothing";
    throwing = false;
    EXPECT_EQ(events(), "sent:DSP received:DSP ");
    expect_usable();
}

TEST_F(Waits, AreOneAtATime) {
    auto wait = world.session.start(Gky{});
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.start(Rmc{"OUT"})); }),
              "[KOR_RESULT_ILLEGAL_STATE] Connection is blocked waiting for GKY response");
    EXPECT_TRUE(wait.is_waiting());
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.link.open()); }),
              "[KOR_RESULT_ILLEGAL_STATE] a session is open on this link");
}

// A late word on a wait that is over is not for the one that came after it, and takes nothing back.
TEST_F(Waits, AreCancelledEachForItself) {
    auto first = world.session.start(Gky{});
    EXPECT_EQ(thrown_by([&] { static_cast<void>(first.get(1s)); }), "[ENDED] the deadline has passed");
    auto second = world.session.start(Gky{});
    first.cancel();
    EXPECT_FALSE(second.poll());
    second.cancel();
    first.cancel();
    EXPECT_EQ(thrown_by([&] { static_cast<void>(second.poll()); }), "[ENDED] the wait was cancelled");
}

TEST_F(Waits, KeepTheirDeadlineAgainstAFloodOfNotices) {
    std::string flood;
    for (int i = 0; i < 50; ++i) { flood += support::frame("NTM000002HI"); }
    world.pad.answer({flood});
    const memory::Time start = world.line.now();
    auto wait = world.session.start(Gky{});
    wait.on_notice([&](std::string_view) { world.line.pass(100ms); });
    EXPECT_EQ(thrown_by([&] { static_cast<void>(wait.get(1s)); }), "[ENDED] the deadline has passed");
    EXPECT_LT(world.line.now() - start, 2s);
    world.answer({"GKY000"});
    EXPECT_EQ(*world.session.start(Gky{}).get(std::chrono::hours::max()), Key::enter);
}

// What cannot be read has been carried out, perhaps: it is lost, however it is called, and the next command is free.
TEST_F(Waits, ThatFailAreLostAndOutOfTheWay) {
    world.answer({"GIN000"});
    auto wait = world.session.start(Gky{});
    for (int i = 0; i < 2; ++i) {
        try {
            static_cast<void>(wait.get(1s));
            FAIL() << "that was no answer";
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::protocol);
            EXPECT_EQ(failure_of(error), Failure::lost);
        }
    }
    events();
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.run(Gts{})); }),
              "[KOR_RESULT_TIMEOUT_ERROR] Timeout waiting for data");
    EXPECT_EQ(events(), "CAN sent:GTS time-out:GTS ");
    // More than the answer of FNC may hold, which the library calls an illegal argument.
    world.link.send_can();
    world.answer({"FNC0009991257" + std::string(514, 'A') + "00000"});
    try {
        static_cast<void>(world.session.run(Fnc{.response_code = "00"}));
        FAIL() << "that was too long";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::illegal_argument);
        EXPECT_EQ(failure_of(error), Failure::lost);
    }
}

TEST_F(Waits, OutliveNoSessionAndNoSessionAnother) {
    std::optional<Session> session = std::move(world.session);
    world.answer({"CLO000"});
    EXPECT_TRUE(session->close().is_ok());
    world.answer({"OPN000", "DSP000", "CLO000"});
    Session next = world.link.open();
    EXPECT_FALSE(session->is_open());
    events();
    session.reset();
    EXPECT_EQ(events(), "") << "the one that was closed closes no other";
    EXPECT_TRUE(next.run(Dsp{"HI"}).ok());
    Link moved = std::move(world.link);
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.link.open()); }),
              "[KOR_RESULT_ILLEGAL_STATE] the link is closed");
    world.link.cancel();
    EXPECT_EQ(world.link.native(), nullptr);
    EXPECT_TRUE(moved.is_open());
}

TEST_F(Waits, AreEndedWithTheirSession) {
    auto wait = std::make_optional(world.session.start(Gky{}));
    world.session.leave("THANK YOU");
    world.pad.noise = [](auto wire) { return wire; };
    const auto closed = [&](std::string_view text) {
        world.pad.answer({});
        return thrown_by([&] { world.session.close(text); });
    };
    closed("BYE");
    EXPECT_EQ(events(), "sent:GKY CAN sent:CLO time-out:CLO ");
    EXPECT_EQ(world.pad.heard(), framed({"CLO032" + support::padded("BYE", 32)}));
    EXPECT_FALSE(wait->is_waiting());
    wait.reset();
    EXPECT_EQ(events(), "");
    EXPECT_EQ(closed("BYE"), "[KOR_RESULT_ILLEGAL_STATE] the session is closed");
}

TEST_F(Waits, EndByThemselvesInTheRightOrder) {
    auto link = std::make_optional(std::move(world.link));
    {
        Session session = std::move(world.session);
        const auto wait = session.start(Rmc{"OUT"});
        link.reset();  // the session keeps the port open
        session.leave(std::string(33, 'x'));
        world.answer({"CLX000"});
    }
    EXPECT_EQ(events(), "sent:RMC CAN sent:CLX time-out:CLX ");
}

// The rest of the old answer would be taken for the new one's.
TEST_F(Waits, AndCommandsThatFailAreFollowedByCan) {
    world.answer({"GIN000"});
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.run(Dsp{"HI"})); }),
              "[KOR_RESULT_PROTOCOL_ERROR] (DSP) Invalid RSP_ID: GIN)");
    events();
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.run(Dsp{std::string_view("A\0B", 3)})); }),
              "[KOR_RESULT_ILLEGAL_ARGUMENT] a text has a NUL in it");
    EXPECT_EQ(events(), "") << "what was refused here says nothing";
    EXPECT_EQ(thrown_by([&] { static_cast<void>(world.session.run(Gts{})); }),
              "[KOR_RESULT_TIMEOUT_ERROR] Timeout waiting for data");
    EXPECT_EQ(events(), "CAN sent:GTS time-out:GTS ");
}

TEST(Values, AreWhatTheySay) {
    const Secret secret("4111111111111111");
    EXPECT_TRUE(secret.equals(Secret("4111111111111111")));
    EXPECT_FALSE(secret.equals(Secret("4111111111111112")));
    EXPECT_FALSE(secret.equals(Secret("41111111")));
    watched = {};
    {
        Secret held(std::string(24, 'x'));
        watched.block = held.bytes().data();
        Secret moved = std::move(held);
        EXPECT_EQ(moved.bytes().data(), watched.block);
    }
    EXPECT_TRUE(watched.released && watched.wiped);
    EXPECT_EQ(from_utf8("\u00c1GUA \u00e9"), "\xC1GUA \xE9");
    for (const char* wrong : {"\u20ac", "\xC3", "\xE9 ", "\xC1\x81"}) {
        EXPECT_THROW(static_cast<void>(from_utf8(wrong)), Error) << wrong;
    }
    EXPECT_EQ(Status::timeout.name(), "ST_TIMEOUT");
    EXPECT_EQ(Status(14).name(), "unknown");
    EXPECT_EQ(Error(ErrorCode::io, "[KOR_RESULT_IO_ERROR] read() error: 5").detail(), "read() error: 5");
    for (const auto& [code, expected] : {std::pair(ErrorCode::runtime, "KOR_RESULT_RUNTIME_ERROR"),
                                         {ErrorCode::busy, "KOR_RESULT_DEVICE_BUSY"},
                                         {ErrorCode::crypt, "KOR_RESULT_CRYPT_ERROR"},
                                         {ErrorCode::refused, ""},
                                         {ErrorCode{}, ""}}) {
        EXPECT_EQ(name(code), expected);
    }
    EXPECT_THROW(Tables().add("009too short"), Error);
    EXPECT_EQ(to_utf8("\xC1GUA"), "\u00c1GUA");
    EXPECT_THROW(static_cast<void>(Gcx{.acquirer = 256}), Error);
    EXPECT_THROW(static_cast<void>(Gcx{.amount = -1}), Error);
}

// The guide's table and the function say the same: a row is a command, what to do when it was refused, and when it was
// lost.
TEST(Repeat, IsAsTheGuideSays) {
    std::ifstream guide(QUORVEL_DOCS "/cpp.md");
    const std::regex row(
        R"(\| ((?:[A-Z]{3}(?:, )?)+) \| (again|never|from [A-Z]{3}) \| (again|never|from [A-Z]{3}) \|.*)");
    const auto words = [](const Repeat& repeat) {
        return repeat.advice == Repeat::Advice::again   ? std::string("again")
               : repeat.advice == Repeat::Advice::never ? "never"
                                                        : "from " + std::string(repeat.first);
    };
    size_t commands = 0;
    for (std::string line; std::getline(guide, line);) {
        std::smatch match;
        if (!std::regex_match(line, match, row)) { continue; }
        const std::string ids = match[1];
        for (size_t at = 0; at < ids.size(); at += 5, ++commands) {
            const std::string id = ids.substr(at, 3);
            EXPECT_EQ(words(repeat_safety(id, Failure::refused)), match[2]) << id;
            EXPECT_EQ(words(repeat_safety(id, Failure::lost)), match[3]) << id;
            EXPECT_EQ(words(repeat_safety(id, Failure::not_sent)), "again") << id;
        }
    }
    EXPECT_EQ(commands, 39U) << "each command once";
    EXPECT_EQ(words(repeat_safety("XYZ", Failure::lost)), "never");
    EXPECT_EQ(failure_of(Refused("GCX", Status::timeout)), Failure::refused);
    EXPECT_EQ(failure_of(Ended(Ended::Why::deadline)), Failure::lost);
    EXPECT_EQ(failure_of(Error(ErrorCode::illegal_argument, "")), Failure::not_sent);
}

}  // namespace
