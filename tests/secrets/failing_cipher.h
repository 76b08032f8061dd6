// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SECRETS_FAILING_CIPHER_H
#define QUORVEL_TESTS_SECRETS_FAILING_CIPHER_H

#include <tomcrypt.h>

namespace secrets {

inline ltc_cipher_descriptor& descriptor(const char* cipher) { return cipher_descriptor[find_cipher(cipher)]; }

// Stands between the library and a cipher as long as it lives, to make a step fail once it has done its work. One at a
// time.
class FailingCipher {
public:
    FailingCipher(const char* cipher, int setup, int block) : descriptor_(descriptor(cipher)), saved_(descriptor_) {
        original = saved_;
        setup_status = setup;
        block_status = block;
        descriptor_.setup = [](const unsigned char* key, int size, int rounds, symmetric_key* schedule) {
            const int status = original.setup(key, size, rounds, schedule);
            return setup_status != CRYPT_OK ? setup_status : status;
        };
        descriptor_.ecb_encrypt = block_of<&ltc_cipher_descriptor::ecb_encrypt>;
        descriptor_.ecb_decrypt = block_of<&ltc_cipher_descriptor::ecb_decrypt>;
        descriptor_.accel_ecb_encrypt = nullptr;
        descriptor_.accel_ecb_decrypt = nullptr;
        descriptor_.accel_cbc_encrypt = nullptr;
        descriptor_.accel_cbc_decrypt = nullptr;
    }
    ~FailingCipher() { descriptor_ = saved_; }
    FailingCipher(FailingCipher&&) = delete;

private:
    template <auto Original>
    static int block_of(const unsigned char* in, unsigned char* out, symmetric_key* schedule) {
        const int status = (original.*Original)(in, out, schedule);
        return block_status != CRYPT_OK ? block_status : status;
    }

    static inline ltc_cipher_descriptor original;
    static inline int setup_status;
    static inline int block_status;
    ltc_cipher_descriptor& descriptor_;
    ltc_cipher_descriptor saved_;
};

}  // namespace secrets

#endif
