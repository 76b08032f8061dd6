/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_DEFS_H
#define QUORVEL_KOR_DEFS_H

/* What the other headers are made of. */

#ifdef __cplusplus
/* Before the declarations of a header: their linkage is that of C. */
#define KOR_BEGIN_DECLS extern "C" {
/* Behind them. */
#define KOR_END_DECLS }
#else
#define KOR_BEGIN_DECLS
#define KOR_END_DECLS
#endif

/* The visibility of everything that the library exports. */
#define KOR_API __attribute__((visibility("default")))

/*
 * Has the compiler compare the arguments from number `first` on with the printf-like format that is number `text`; with
 * 0 for `first`, where they come as a list, it looks at the format alone. Empty for compilers that cannot, and for an
 * application that defines it so before it includes anything of this library.
 */
#ifndef KOR_PRINTF
#ifdef __GNUC__
#define KOR_PRINTF(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define KOR_PRINTF(text, first)
#endif
#endif

/*
 * A caller in C may store any 32-bit number in an enumeration. In C++ that is only defined when the enumeration has
 * a fixed underlying type, so the enumerations get one there; C needs nothing.
 */
#ifdef __cplusplus
#define KOR_ENUM_INT32 : int32_t
#else
#define KOR_ENUM_INT32
#endif

#endif
