// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/secrets/table.h"

#include <algorithm>

#include "quorvel/abecs/pan.h"
#include "tests/support/wire.h"

namespace secrets {

namespace {

ltc_cipher_descriptor original;
int setupStatus = CRYPT_OK;
int blockStatus = CRYPT_OK;

template <auto Original>
int block_of(const unsigned char* in, unsigned char* out, symmetric_key* schedule) {
    const int status = (original.*Original)(in, out, schedule);
    return blockStatus != CRYPT_OK ? blockStatus : status;
}

// The texts that the library keeps until the next call.
void forget_results() {
    const AbecsWkPan key{};
    abecs_pan_encrypt("", &key);
    abecs_pan_decrypt_track("", &key);
    abecs_pan_identify("");
}

// Records are smaller where pointers are: only what was wiped can be told there, and not how many bytes.
std::vector<std::string> comparable(std::vector<std::string> wiped) {
    if (sizeof(void*) == 4) {
        for (std::string& each : wiped) { each.erase(0, each.find(": ")); }
    }
    std::sort(wiped.begin(), wiped.end());
    return wiped;
}

}  // namespace

TEST_P(Secrets, AreWiped) { expect(GetParam()); }

void expect(const Row& row) {
    std::vector<support::Raised> raised;
    if (row.raised != support::Raised{}) { raised.push_back(row.raised); }
    for (const Raising raising : {Raising::kCaught, Raising::kReturning}) {
        SCOPED_TRACE(raising == Raising::kCaught ? "caught" : "returning");
        const Row::Call call = row.prepare();
        const Seen seen = watch(row.secrets, raising, call);
        EXPECT_EQ(seen.raised, raised);
        EXPECT_EQ(comparable(seen.wiped), comparable(row.wiped));
        EXPECT_EQ(seen.left, row.left);
        EXPECT_EQ(watch(row.secrets, raising, forget_results).left, std::vector<std::string>{});
    }
}

FailingCipher::FailingCipher(const char* cipher, int setup, int block)
    : descriptor_(descriptor(cipher)), saved_(descriptor_) {
    original = saved_;
    setupStatus = setup;
    blockStatus = block;
    descriptor_.setup = [](const unsigned char* key, int size, int rounds, symmetric_key* schedule) {
        const int status = original.setup(key, size, rounds, schedule);
        return setupStatus != CRYPT_OK ? setupStatus : status;
    };
    descriptor_.ecb_encrypt = block_of<&ltc_cipher_descriptor::ecb_encrypt>;
    descriptor_.ecb_decrypt = block_of<&ltc_cipher_descriptor::ecb_decrypt>;
    descriptor_.accel_ecb_encrypt = nullptr;
    descriptor_.accel_ecb_decrypt = nullptr;
    descriptor_.accel_cbc_encrypt = nullptr;
    descriptor_.accel_cbc_decrypt = nullptr;
}

const Secret& number() {
    static const Secret kSecret = of_digits("number", kNumber);
    return kSecret;
}

const Secret& key() {
    static const Secret kSecret = of_digits("key", kKey);
    return kSecret;
}

std::string from_digits(std::string_view digits) { return support::operator""_hex(digits.data(), digits.size()); }

}  // namespace secrets
