// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcd_sized.h"

#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;

TEST(GcdSized, WritesNoMoreThanThereIsRoomFor) {
    const auto reads = [](size_t size, const std::string& digits, const std::string& written, const Outcome& expected) {
        char out[40];
        std::memset(out, 'o', sizeof out);
        polls(
            "GCD016" + "000B 0002 0001 000D 0001 01 000E 0001 20"_hex,
            "GCD0000" + std::to_string(digits.size() + 4) + "804D 00"_hex + static_cast<char>(digits.size()) + digits,
            expected, [](auto* link) { abecs_cmd_gcd(link, 1, 1, 32, 0); },
            [&](auto* link) { return abecs_cmd_gcd_response_sized(link, out, size, nullptr); });
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

}  // namespace
