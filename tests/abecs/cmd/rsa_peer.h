// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_RSA_PEER_H
#define QUORVEL_TESTS_ABECS_CMD_RSA_PEER_H

#include <gtest/gtest.h>
#include <string>

#include "tests/support/big.h"
#include "tests/support/wire.h"

namespace support {

// block ^ 65537 mod modulus, in as many upper-case digits as the modulus: what a PIN pad answers to a public key.
inline std::string rsa_encipher(const std::string& block, const std::string& modulusDigits) {
    const Big power = Big(block).to_the(Big(65537), Big::of_digits(modulusDigits));
    std::string digits = to_hex(power.bytes(modulusDigits.size() / 2));
    std::erase(digits, ' ');
    return digits;
}

// `block` enciphered to digits that begin with "30", which are also the padding of hexadecimal fields; for this the
// two bytes at 2 are tried out. One cryptogram in 256 is such.
inline std::string rsa_encipher_like_padding(const std::string& clear, const std::string& modulusDigits) {
    std::string block = clear;
    std::string cryptogram;
    for (int i = 0; i < 8000 && !cryptogram.starts_with("30"); ++i) {
        block[2] = static_cast<char>(1 + i % 255);
        block[3] = static_cast<char>(1 + i / 255);
        cryptogram = rsa_encipher(block, modulusDigits);
    }
    EXPECT_TRUE(cryptogram.starts_with("30"));
    return cryptogram;
}

}  // namespace support

#endif
