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

}  // namespace
