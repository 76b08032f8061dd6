/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_INIT_H
#define QUORVEL_CRYPT_INIT_H

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Registers with LibTomCrypt what the crypt_* functions use: LibTomMath for the big numbers, the system's random
 * generator, SHA-1, AES, DES and 3DES. It runs when the library is loaded; a further call changes nothing, unless the
 * application has unregistered something since. RUNTIME_ERROR when LibTomCrypt has no room left:
 * "Error registering SPRNG", "Error registering SHA-1", "Error registering AES", "Error registering DES",
 * "Error registering 3DES".
 */
KOR_API void crypt_init(void);

KOR_END_DECLS

#endif
