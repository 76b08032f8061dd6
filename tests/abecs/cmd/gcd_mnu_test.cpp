// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <memory>

#include "quorvel/abecs/cmd/gcd_sized.h"
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(Gcd, SendsTheTimeOutOnlyWhenThereIsOne) {
    sends("GCD016" + "000B 0002 FFFF 000D 0001 20 000E 0001 20"_hex, abecs_cmd_gcd, 0xFFFF, 32, 32, 0);
    sends("GCD021" + "000B 0002 1316 000D 0001 04 000E 0001 13 000C 0001 FF"_hex, abecs_cmd_gcd, 0x1316, 4, 19, 255);
    refuses("Invalid value for minDig: 33 (max: 32)", abecs_cmd_gcd, 1, 33, 34, 0);
    refuses("Invalid value for maxDig: 33 (max: 32)", abecs_cmd_gcd, 1, 0, 33, 0);
    refuses("minDig (5) > maxDig (4)", abecs_cmd_gcd, 1, 5, 4, 0);
}

TEST(Gcd, ReadsTheNumberWhereverItStandsAndHoweverLongItIs) {
    const Raised missing = error(kProtocol, "PP_VALUE not found on response");
    const auto reads = [](const std::string& data, const std::string& number, const Outcome& expected) {
        char out[996];
        std::memset(out, 'o', sizeof out);
        polls("GCD000" + data, expected, abecs_cmd_gcd_response, out, nullptr);
        EXPECT_EQ(std::string(out, number.size()), number);
        EXPECT_EQ(out[number.size()], expected.raised.code == KOR_RESULT_OK ? '\0' : 'o');
    };
    reads("016" + "8050 0000 804D 0004"_hex + "0042" + "804D 0000"_hex, "0042", kOk);
    reads("999" + "804D 03E3"_hex + std::string(995, '7'), std::string(995, '7'), kOk);
    reads("004" + "8050 0000"_hex, "", missing);
}

TEST(GcdSized, WritesNoMoreThanThereIsRoomFor) {
    const auto reads = [](size_t size, const std::string& digits, const std::string& written, const Outcome& expected) {
        char out[40];
        std::memset(out, 'o', sizeof out);
        const std::string length = std::to_string(digits.size() + 4);
        polls("GCD0000" + length + "804D 00"_hex + static_cast<char>(digits.size()) + digits, expected,
              abecs_cmd_gcd_response_sized, out, size, nullptr);
        EXPECT_EQ(std::string(out, sizeof out), written + std::string(sizeof out - written.size(), 'o'));
    };
    const std::string digits = "01234567890123456789012345678901";
    reads(33, digits, digits + '\0', kOk);
    reads(32, digits, "", error(kProtocol, "PP_VALUE is too long (max: 31, read: 32)"));
    reads(1, digits, "", error(kProtocol, "PP_VALUE is too long (max: 0, read: 32)"));
    char out = 'o';
    refuses("'out' is NULL", abecs_cmd_gcd_response_sized, nullptr, 0, nullptr);
    refuses("'size' is zero", abecs_cmd_gcd_response_sized, &out, 0, nullptr);
}

const std::string kOption = "0020 0018"_hex;
constexpr char kTea[][25] = {"TEA"};

TEST(Mnu, SendsTwentyOptionsAndNothingElse) {
    char options[20][25] = {};
    std::string sent = "MNU560";
    for (size_t i = 0; i < 20; ++i) {
        const std::string text = "OPTION" + std::to_string(i);
        text.copy(options[i], sizeof options[i] - 1);
        sent += kOption + padded(text, 24);
    }
    sends(sent, abecs_cmd_mnu, 0, nullptr, options, 20);
}

TEST(Mnu, SendsTimeOutAndTitleFirst) {
    constexpr char kOptions[][25] = {"0123456789abcdefghijKLMN", ""};
    sends("MNU193" + "000C 0001 FF 001B 0080"_hex + padded("CHOOSE\rONE \xC9", 128) + kOption + kOptions[0] + kOption
              + std::string(24, ' '),
          abecs_cmd_mnu, 255, "CHOOSE\rONE \xC9", kOptions, 2);
}

TEST(Mnu, ChecksItsArgumentsInOrder) {
    refuses("'dspMsg' is too long", abecs_cmd_mnu, 0, std::string(129, 'x').c_str(), nullptr, 0);
    refuses("'mnuOpts' is NULL", abecs_cmd_mnu, 0, nullptr, nullptr, 0);
    refuses("Invalid numOpts: 21 (min: 1, max: 20)", abecs_cmd_mnu, 0, nullptr, kTea, 21);
    for (const std::string text : {"CAF\xC9", "123456789012345678901234."}) {
        char options[][25] = {"TEA", ""};
        text.copy(options[1], sizeof options[1]);
        refuses("'Invalid menu option at index 1: " + text, abecs_cmd_mnu, 0, nullptr, options, 2);
    }
    // An array of its own size on the heap, so that reading on behind an option without an end would be seen.
    const auto unended = std::make_unique<char[][25]>(1);
    std::memset(unended[0], 'x', sizeof unended[0]);
    refuses("Field does not have enough room for data", abecs_cmd_mnu, 0, nullptr, unended.get(), 1);
}

TEST(Mnu, ReadsTheChoice) {
    const Raised missing = error(kProtocol, "PP_VALUE not present in response");
    const auto reads = [](const std::string& data, uint32_t choice, const Outcome& expected) {
        uint32_t option = 99;
        polls("MNU000" + data, expected, abecs_cmd_mnu_response, &option, nullptr);
        EXPECT_EQ(option, choice) << data;
    };
    reads("006" + "804D 0002"_hex + "07", 7, kOk);
    reads("012" + "804D 0002"_hex + "00" + "8050 0002"_hex + "11", 0, kOk);
    reads("012" + "8050 0002"_hex + "11" + "804D 0002"_hex + "07", 99, missing);
}

}  // namespace
