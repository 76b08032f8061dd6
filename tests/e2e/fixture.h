// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_E2E_FIXTURE_H
#define QUORVEL_TESTS_E2E_FIXTURE_H

#include <cstdint>
#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/support/raised.h"

// The library and a virtual PIN pad at the other end of its link.
class EndToEnd : public testing::Test {
protected:
    EndToEnd() : EndToEnd(quorvel::sim::PinPad::Options{}) {}
    explicit EndToEnd(quorvel::sim::PinPad::Options options) : pinPad_(std::move(options)) {
        pinPad_.start();
        EXPECT_NO_RAISE(link_ = abecs_comm_open(pinPad_.path().c_str()));
    }
    ~EndToEnd() override { EXPECT_NO_RAISE(abecs_comm_close(&link_)); }

    // The command's status; -3, which none has, when it raises.
    template <typename... Parameters>
    int32_t call(int32_t (*command)(AbecsComm*, Parameters...), std::type_identity_t<Parameters>... arguments) {
        int32_t status = -3;
        EXPECT_NO_RAISE(status = command(link_, arguments...));
        return status;
    }

    // Sends a blocking command during which the cardholder does so. One that is answered at once takes no gestures.
    template <typename Result, typename... Parameters>
    void begin(const char* id, const quorvel::sim::Gestures& gestures, Result (*command)(AbecsComm*, Parameters...),
               std::type_identity_t<Parameters>... arguments) {
        if (!gestures.events().empty()) pinPad_.when(id, gestures);
        EXPECT_NO_RAISE(static_cast<void>(command(link_, arguments...)));
    }

    // What became of the PIN pad, which has found nothing to complain about.
    const quorvel::sim::Device& retire() {
        pinPad_.stop();
        EXPECT_TRUE(pinPad_.findings().empty());
        return pinPad_.device();
    }

    quorvel::sim::PinPad pinPad_;
    AbecsComm* link_ = nullptr;
};

#endif
