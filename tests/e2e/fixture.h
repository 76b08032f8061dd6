// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_E2E_FIXTURE_H
#define QUORVEL_TESTS_E2E_FIXTURE_H

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/support/raised.h"
#include "wire/hex.h"

// What stands in hexadecimal there.
inline std::string from_digits(std::string_view digits) {
    const quorvel::sim::Bytes bytes = quorvel::sim::from_hex(digits);
    return {bytes.begin(), bytes.end()};
}

inline const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

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
        if (!gestures.events().empty()) { pinPad_.when(id, gestures); }
        EXPECT_NO_RAISE(static_cast<void>(command(link_, arguments...)));
    }

    // Asks for the answer to it until it comes; what was told in between is kept.
    template <typename Out>
    int32_t finish(int32_t (*response)(AbecsComm*, Out*, char*), Out* out) {
        char note[33] = "";
        int32_t status = call(response, out, note);
        while (status == ABECS_RSP_STAT_ST_NOTIFICATION) {
            notes_.emplace_back(note);
            status = call(response, out, note);
        }
        return status;
    }

    // What became of the PIN pad, which has found nothing to complain about.
    const quorvel::sim::Device& retire() {
        pinPad_.stop();
        EXPECT_TRUE(pinPad_.findings().empty());
        return pinPad_.device();
    }

    quorvel::sim::PinPad pinPad_;
    AbecsComm* link_ = nullptr;
    std::vector<std::string> notes_;
};

#endif
