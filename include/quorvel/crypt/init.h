/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_INIT_H
#define QUORVEL_CRYPT_INIT_H

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Makes LibTomMath the big numbers of LibTomCrypt and registers with it, in this order, the generator SPRNG, SHA-1,
 * AES, DES and 3DES. The crypt_* functions use these, except the generator: their keys and paddings draw from
 * getrandom(2). It runs when the library is loaded. A further call changes nothing, unless the application has
 * unregistered something or chosen other big numbers since. RUNTIME_ERROR when LibTomCrypt has no room left: "Error
 * registering SPRNG", "Error registering SHA-1", "Error registering AES", "Error registering DES", "Error registering
 * 3DES"; what comes before it stays registered, and what comes after it is not.
 */
KOR_API void crypt_init(void);

KOR_END_DECLS

#endif
