// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/chp.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"

namespace {

using namespace support::literals;
using support::Link;

AbecsCmdChpParam param(int32_t slot, int32_t oper, const char* command, int32_t format, const char* message) {
    AbecsCmdChpParam made{};
    made.slot = static_cast<AbecsCmdChpSlot_E>(slot);
    made.oper = static_cast<AbecsCmdChpOper_E>(oper);
    std::memcpy(made.chpCmd, command, strnlen(command, sizeof made.chpCmd));
    made.pinFmt = static_cast<AbecsCmdChpPinFmt_E>(format);
    std::memcpy(made.message, message, strnlen(message, sizeof made.message));
    return made;
}

TEST(Chp, SendsWhatTheOperationTakes) {
    const auto expect_sent = [](const AbecsCmdChpParam& sent, const std::string& request,
                                support::Peer::Where where = {}) {
        char out[515] = "old";
        const auto send = [&](AbecsComm* link) { abecs_cmd_chp(link, &sent); };
        support::expect_exchange("CHP" + request, send, abecs_cmd_chp_response, out, "out", where);
        EXPECT_STREQ(out, "old");
    };
    expect_sent(param(0, 0, "odd", 3, "\r"), "005|00|000"_wire);
    expect_sent(param(9, 1, "zz", 3, "\r"), "005|91|000"_wire);
    expect_sent(param(1, 2, "", 3, "\r"), "005|12|000"_wire);
    expect_sent(param(1, 2, "00a404000e", 3, "\r"), "015|12|005|00A404000E"_wire);
    expect_sent(param(1, 2, std::string(521, 'a').c_str(), 3, "\r"), "525|12|260"_wire + std::string(520, 'A'));
    expect_sent(param(2, 3, "00200080", 9, "PIN?"), "046|23|004|00200080|9|PIN?"_wire + std::string(28, ' '));
    expect_sent(param(2, 3, "00200080", 0, std::string(33, '\xE9').c_str()),
                "046|23|004|00200080|0"_wire + std::string(32, '\xE9'));
}

TEST(Chp, ChecksItsArgumentsInTheirOrder) {
    Link link;
    const auto refused = [&](const AbecsCmdChpParam& wrong, const char* detail) {
        EXPECT_REFUSED(2, detail, abecs_cmd_chp(link.comm, &wrong));
    };
    EXPECT_REFUSED(2, "'param' is NULL", abecs_cmd_chp(link.comm, nullptr));
    refused(param(10, 4, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpSlot_E: 10");
    refused(param(-1, 4, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpSlot_E: -1");
    refused(param(9, 4, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpOper_E: 4");
    refused(param(9, -1, "0", 3, "\r"), "Invalid enumerator for AbecsCmdChpOper_E: -1");
    refused(param(9, 2, "00A", 3, "\r"), "Length of 'param->chpCmd' is invalid: 3");
    refused(param(9, 3, "0020008000", 3, "\r"), "Length of 'param->chpCmd' is invalid: 10");
    refused(param(9, 3, "", 3, "\r"), "Length of 'param->chpCmd' is invalid: 0");
    refused(param(9, 3, "0020008x", 3, "\r"), "Invalid enumerator for AbecsCmdChpPinFmt_E: 3");
    refused(param(9, 3, "0020008x", 9, "\r"), "Invalid hex byte at index 6");
    refused(param(9, 3, "00200080", 9, "\r"), "Invalid character (0x0D) at position 0");
}

TEST(Chp, ReadsWhatTheCardAnswers) {
    const auto reads = [](const std::string& response, int16_t code, const std::string& expected) {
        Link link;
        link.peer.request("CHP00510000").response("CHP000" + response);
        const AbecsCmdChpParam off = param(1, 0, "", 0, "");
        link.call(abecs_cmd_chp)(&off);
        char out[515] = "old";
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_chp_response(link.comm, out, nullptr); }),
                  code == 0 ? support::Raised{} : support::error(code, expected));
        if (code == 0) { EXPECT_EQ(out, expected); }
        if (code != 0) { EXPECT_EQ(out, response == "003" ? std::string("old") : ""); }
    };
    const std::string most = support::repeated("9f", 257);
    reads("000", 0, "");
    reads("003|000"_wire, 0, "");
    reads("009|003|306aFF"_wire, 0, "6aFF");
    reads("517|257"_wire + most, 0, most);
    reads("519|258"_wire + most + "00", 2, "sizeTo (515) is not enough to store field (length: 516)");
    reads("005|001|9z"_wire, 6, "Invalid data: 9z");
    reads("003", 6, "Buffer does not have enough data (requested: 3, available: 0)");
}

}  // namespace
