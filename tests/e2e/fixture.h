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
#include "tests/core/owned.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"
#include "wire/hex.h"

// What stands in hexadecimal there.
inline std::string from_digits(std::string_view digits) {
    const quorvel::sim::Bytes bytes = quorvel::sim::from_hex(digits);
    return {bytes.begin(), bytes.end()};
}

inline const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

inline const quorvel::sim::Card kCard{.pan = "4111111111111111",
                                      .track1 = "B4111111111111111^DOE/JOHN^301210100000000000",
                                      .track2 = "4111111111111111=30121010000000000",
                                      .track3 = "014111111111111111==724724000000000030300100000000000000=1=0",
                                      .chip = quorvel::sim::Chip::standard()};

// Working keys, in clear and under the test keys that the PIN pad has at index 0; a vector to chain from.
using support::literals::operator""_hex;
inline const std::string kDes = "1122334455667788 1122334455667788"_hex;
inline const std::string kTdes = "1122334455667788 9900AABBCCDDEEFF"_hex;
inline const std::string kEncipheredDes = "B4CC3FD9D8D95214"_hex;
inline const std::string kEncipheredTdes = "3EB3B72576BBBE83 4F0B96AAA5A8B548"_hex;
inline const std::string kVector = "A1B2C3D4E5F60718"_hex;
// The published keys of the first transactions of DUKPT.
inline const std::string kPinKeys[]{"042666B49184CF5C 68DE9628D0397B36"_hex, "C46551CEF9FD244F AA9AD834130D3B38"_hex,
                                    "0DF3D9422ACA561A 47676D07AD6BAD05"_hex};
inline const std::string kDataKeys[]{"448D3F076D830403 6A55A3D7E0055A78"_hex, "F1BE73B36135C5C2 6CF937D50ABBE5AF"_hex};

// The library and a virtual PIN pad at the other end of its link.
class EndToEnd : public testing::Test {
protected:
    EndToEnd() : EndToEnd(quorvel::sim::PinPad::Options{}) {}
    explicit EndToEnd(quorvel::sim::PinPad::Options options) : pinPad_(std::move(options)) {
        pinPad_.start();
        EXPECT_NO_RAISE(link_ = abecs_comm_open(pinPad_.path().c_str()));
    }
    ~EndToEnd() override { EXPECT_NO_RAISE(abecs_comm_close(&link_)); }

    // The PIN pad has found nothing to complain about.
    void TearDown() override { retire(); }

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

    // Of an answer that consists of parameters.
    std::string item(uint16_t id) {
        const AbecsRspParamValue* const value = abecs_rsp_param_map_get(items_, id);
        return value == nullptr ? "" : std::string(value->data, value->data + value->size);
    }

    void swipe(const quorvel::sim::Card& card) {
        begin("CEX", quorvel::sim::Gestures().swipe(card), abecs_cmd_cex, "110000", nullptr, nullptr);
        EXPECT_EQ(call(abecs_cmd_cex_response, items_, nullptr), ABECS_RSP_STAT_ST_OK);
    }

    // What became of the PIN pad.
    const quorvel::sim::Device& retire() {
        pinPad_.stop();
        EXPECT_TRUE(pinPad_.findings().empty());
        return pinPad_.device();
    }

    quorvel::sim::PinPad pinPad_;
    AbecsComm* link_ = nullptr;
    Owned<AbecsRspParamMap, kor_map_delete> items_{abecs_rsp_param_map_new()};
    std::vector<std::string> notes_;
};

class SecureEndToEnd : public EndToEnd {
protected:
    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, true), ABECS_RSP_STAT_ST_OK); }
};

#endif
