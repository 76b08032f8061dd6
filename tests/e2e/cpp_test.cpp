// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>

#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/e2e/cpp_client.h"
#include "tests/support/raised.h"

namespace {

using namespace quorvel::sim;

// As a cable does that is pulled in the middle of an encrypted session.
void cut_off(const std::string& port) {
    AbecsComm* link = nullptr;
    EXPECT_NO_RAISE(link = abecs_comm_open(port.c_str()));
    EXPECT_NO_RAISE(abecs_cmd_opn(link, true));
    EXPECT_NO_RAISE(abecs_comm_close(&link));
}

TEST(Cpp, GetsOutOfAnEncryptedSessionThatWasCutOff) {
    PinPad pinPad;
    pinPad.start();
    cut_off(pinPad.path());
    EXPECT_EQ(client::plain(pinPad.path()), "ST_OK");
    cut_off(pinPad.path());
    pinPad.when("GKY", Gestures().notify("ANY KEY").press(Key::kF2));
    EXPECT_EQ(client::encrypted(pinPad.path()), "16 ANY KEY F2");
    EXPECT_EQ(pinPad.screen().text, "BYE");
    const auto spoil = [&] { pinPad.inject({.kind = "nak", .command = "CLO", .times = 3}); };
    EXPECT_EQ(client::plain_after_encrypted(pinPad.path(), spoil), "ST_OK PP");
}

}  // namespace
