// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_REGISTRY_H
#define QUORVEL_CRYPT_REGISTRY_H

// Declares the descriptor of LibTomMath; Debian's configuration leaves that out.
#ifndef LTM_DESC
#define LTM_DESC
#endif
#include <tomcrypt.h>

namespace kor::crypt {

// Where the algorithms stand in LibTomCrypt's tables; -1 until they are registered.
struct Registry {
    int sprng = -1;
    int sha1 = -1;
    int aes = -1;
    int des = -1;
    int tdes = -1;
};

extern Registry registry;

// True for CRYPT_OK; raises CRYPT_ERROR with LibTomCrypt's text for everything else. Never between a start and its
// done, nor before what a failed call left behind is wiped: the raise leaves by longjmp.
[[nodiscard]] bool succeeded(int status);

}  // namespace kor::crypt

#endif
