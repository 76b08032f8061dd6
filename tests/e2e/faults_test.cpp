// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
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

class Paced : public Faults {
protected:
    Paced() : Faults(PinPad::Options{.speed = 19200}) {}
};

TEST_F(Paced, TakesTheTimeOfTheLine) {
    const support::Elapsed elapsed;
    for (int i = 0; i < 4; ++i) { expect_answer(); }
    EXPECT_TRUE(elapsed.between(4 * 69 * 10 * 1000ms / 19200, 5s));
}

}  // namespace
