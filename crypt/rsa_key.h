// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_RSA_KEY_H
#define QUORVEL_CRYPT_RSA_KEY_H

#include "crypt/registry.h"
#include "quorvel/crypt/rsa.h"

struct CryptRsaKey {
    rsa_key key;
};

#endif
