// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/clo.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "quorvel/abecs/cmd/clx.h"
#include "tests/support/link.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

TEST(Clo, SendsItsMessageInThirtyTwoCharacters) {
    const auto sends = [](const char* message, const std::string& field, const char* response, int32_t stat) {
        Link link;
        link.peer.request("CLO032" + field).response(response);
        EXPECT_EQ(link.call(abecs_cmd_clo)(message), stat);
    };
    const std::string full = "ABCDEFGHIJKLMNOPQRSTUVWXYZ\xC1\xE9 78.";
    sends(nullptr, std::string(32, ' '), "CLO000", 0);
    sends("BYE", "BYE" + std::string(29, ' '), "ERR010", 10);
    sends(full.c_str(), full, "CLO040999", 40);
}

TEST(Close, RefusesBadArguments) {
    Link link;
    const std::string message(129, 'm');
    EXPECT_RAISES(2, "'msg' it too long (maximum: 32, requested: 33)",
                  abecs_cmd_clo(link.comm, "123456789012345678901234567890123"));
    EXPECT_RAISES(2, "Invalid character (0x0D) at position 1", abecs_cmd_clo(link.comm, "A\rB"));
    EXPECT_RAISES(2, "'dspMsg' length (129)  is greater than 128 characters",
                  abecs_cmd_clx(link.comm, message.c_str(), "NINECHARS"));
    EXPECT_RAISES(2, "'mfName' length (9) is greater than 8 characters", abecs_cmd_clx(link.comm, "ok", "NINECHARS"));
    EXPECT_RAISES(2, "Invalid character (0x0D) at position 0", abecs_cmd_clx(link.comm, nullptr, "\r"));
}

TEST(Clx, SendsWhatItIsGiven) {
    const auto sends = [](const char* message, const char* name, const std::string& request) {
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, nullptr));
        link.peer.request(request).response("CLX000");
        EXPECT_EQ(link.call(abecs_cmd_clx)(message, name), 0);
    };
    const std::string message(128, 'm');
    sends("", "", "CLX");
    sends(nullptr, "logo", "CLX012" + "001E0008"_hex + "LOGO    ");
    sends("A\rB", nullptr, "CLX007" + "001B0003"_hex + "A\rB");
    sends(message.c_str(), "Logo1234", "CLX144" + "001E0008"_hex + "LOGO1234" + "001B0080"_hex + message);
}

TEST(Close, BothDropTheKeys) {
    const std::array<uint8_t, 16> key{1, 2, 3};
    const AbecsWkPan wkPan{ABECS_WK_PAN_TYPE_TDES, {4, 5, 6}};
    for (const auto& [extended, stat] : {std::pair{false, "000"}, {true, "000"}, {false, "0x0"}, {true, "0x0"}}) {
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &wkPan));
        EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, key.data()));
        link.comm->keySet = false;  // so that the request can be spelled; the bytes must go all the same
        link.peer.request(extended ? "CLX" : "CLO032" + std::string(32, ' '));
        link.peer.response((extended ? "CLX" : "CLO") + std::string(stat));
        auto close = [&link, extended = extended] {
            if (extended) { return abecs_cmd_clx(link.comm, nullptr, nullptr); }
            return abecs_cmd_clo(link.comm, nullptr);
        };
        const bool good = stat[1] == '0';
        EXPECT_EQ(support::raised_by(close),
                  good ? support::Raised{} : support::error(6, "Invalid char (0x78) at index 1"));
        EXPECT_FALSE(link.comm->keySet);
        EXPECT_EQ(link.comm->key, (std::array<uint8_t, 16>{}));
        EXPECT_FALSE(link.comm->panKeyInstalled);
        EXPECT_FALSE(link.comm->panProtected);
    }
}

}  // namespace
