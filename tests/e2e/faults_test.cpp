// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <future>
#include <memory>

#include "tests/e2e/fixture.h"
#include "tests/support/elapsed.h"

namespace {

using namespace quorvel::sim;
using namespace std::chrono_literals;

// What an application sees of a line, or a PIN pad, that does not do as it should.
class Faults : public EndToEnd {
protected:
    // The session key decides what damage makes of what it enciphers.
    Faults() : EndToEnd({.sessionKey = SessionKey{}}) {}
    using EndToEnd::EndToEnd;

    // A command that must succeed, whatever went wrong before it.
    void expect_answer() {
        AbecsCmdGinOut out{};
        EXPECT_EQ(call(abecs_cmd_gin, 3, &out), ABECS_RSP_STAT_ST_OK);
        EXPECT_STREQ(out.idx03.text1, "APP003");
    }

    void expect_error(const Fault& fault, int16_t code, const char* detail) {
        SCOPED_TRACE(fault.kind);
        pinPad_.inject(fault);
        AbecsCmdGinOut out{};
        EXPECT_RAISES(code, detail, abecs_cmd_gin(link_, 3, &out));
        EXPECT_NO_RAISE(abecs_comm_send_can(link_));
        expect_answer();
    }

    // Sends GKY, and presses a key once the PIN pad waits for one.
    void press_under(const Fault& fault) {
        pinPad_.inject(fault);
        pinPad_.when("GKY", Gestures().press(Key::kF1));
        EXPECT_NO_RAISE(abecs_cmd_gky(link_));
    }

    int32_t poll() { return call(abecs_cmd_gky_response, nullptr); }
};

TEST_F(Faults, OfOneCommandAreErrorsThatCanHeals) {
    constexpr int16_t kError = KOR_RESULT_PROTOCOL_ERROR;
    expect_error({.kind = "garbage"}, kError, "Protocol error (expected SYN, read 0x55)");
    expect_error({.kind = "lost-ack"}, kError, "Protocol error (unknown packet response: 0x16)");
    expect_error({.kind = "nak", .times = 3}, kError, "Packet was rejected");
    expect_error({.kind = "wrong-id"}, kError, "(GIN) Invalid RSP_ID: XXX)");
    expect_error({.kind = "bad-crc", .times = 3}, KOR_RESULT_TIMEOUT_ERROR, "No response in 3 attempts");
    EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK);
    expect_error({.kind = "bad-cryptogram"}, kError,
                 "Malformed encrypted response (caused by Encrypted packet is not complete)");
}

TEST_F(Faults, OfAFrameOrOfPaceAreBorne) {
    for (const auto& [fault, least] : {std::pair(Fault{.kind = "bad-crc", .times = 2}, 0ms),
                                       {{.kind = "truncated"}, 0ms},
                                       {{.kind = "nak", .times = 2}, 0ms},
                                       {{.kind = "delay", .time = 300ms}, 250ms},
                                       {{.kind = "slow-bytes", .time = 5ms}, 250ms},
                                       {{.kind = "split", .time = 300ms}, 250ms}}) {
        SCOPED_TRACE(fault.kind);
        pinPad_.inject(fault);
        const support::Elapsed elapsed;
        expect_answer();
        EXPECT_TRUE(elapsed.between(least, 5s));
    }
}

TEST_F(Faults, OfWhatTheResponseSaysReachTheCaller) {
    AbecsCmdGinOut out{};
    pinPad_.inject({.kind = "status", .status = ABECS_RSP_STAT_ST_INTERR});
    EXPECT_EQ(call(abecs_cmd_gin, 3, &out), ABECS_RSP_STAT_ST_INTERR);
    pinPad_.inject({.kind = "too-long"});
    const int32_t id = ABECS_CMD_GIX_ID_PP_SERNUM;
    EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Malformed parameter (expected data length: 65535, available: 10)",
                  abecs_cmd_gix(link_, &id, 1, items_));
    EXPECT_EQ(call(abecs_cmd_gix, &id, 1, items_), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(kor_map_size(items_), 1U);
}

TEST_F(Faults, OfABlockingCommandLeaveItPending) {
    press_under({.kind = "delay", .time = 2500ms});
    EXPECT_EQ(poll(), ABECS_RSP_STAT_ST_PROCESSING);
    EXPECT_EQ(poll(), ABECS_RSP_STAT_ST_F1);
    press_under({.kind = "no-answer"});
    EXPECT_EQ(poll(), ABECS_RSP_STAT_ST_PROCESSING);
    EXPECT_NO_RAISE(abecs_comm_send_can(link_));
    expect_answer();
}

class Unplugged : public Faults {
protected:
    Unplugged() : Unplugged(std::make_shared<std::promise<std::string>>()) {}

    std::future<std::string> returned_;

private:
    explicit Unplugged(const std::shared_ptr<std::promise<std::string>>& path)
        : Faults(PinPad::Options{.returned = [path](const std::string& to) { path->set_value(to); }}),
          returned_(path->get_future()) {}
};

TEST_F(Unplugged, IsAnErrorUntilTheLinkIsOpenedAgain) {
    EXPECT_NO_RAISE(abecs_cmd_gky(link_));
    pinPad_.inject({.kind = "hang-up", .time = 1ms});
    pinPad_.press(Key::kF1);
    const std::string path = returned_.get();
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", abecs_cmd_gky_response(link_, nullptr));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcdrain() error: 5", abecs_comm_send_can(link_));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcflush() error: 5", abecs_comm_close(&link_));
    EXPECT_NO_RAISE(link_ = abecs_comm_open(path.c_str()));
    expect_answer();
}

class Paced : public Faults {
protected:
    Paced() : Faults(PinPad::Options{.speed = 19200}) {}
};

TEST_F(Paced, TakesTheTimeOfTheLine) {
    const support::Elapsed elapsed;
    for (int i = 0; i < 4; ++i) { expect_answer(); }
    EXPECT_TRUE(elapsed.between(4 * 69 * 10 * 1000ms / 19200, 5s));
    pinPad_.when("GKY", Gestures().press(Key::kF1));
    EXPECT_NO_RAISE(abecs_cmd_gky(link_));
    EXPECT_EQ(poll(), ABECS_RSP_STAT_ST_F1);
}

}  // namespace
