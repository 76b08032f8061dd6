/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_DEFS_H
#define QUORVEL_KOR_DEFS_H

/* Linkage and visibility of everything the library exports. */
#ifdef __cplusplus
#define KOR_BEGIN_DECLS extern "C" {
#define KOR_END_DECLS }
#else
#define KOR_BEGIN_DECLS
#define KOR_END_DECLS
#endif

#define KOR_API __attribute__((visibility("default")))

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
