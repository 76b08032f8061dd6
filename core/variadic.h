// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_VARIADIC_H
#define QUORVEL_CORE_VARIADIC_H

// Of a function with variable arguments: on 64-bit ARM it would begin by storing all vector registers on the stack,
// where they are arguments, and in those may be what a secret was copied with.
#ifdef __aarch64__
#define KOR_VARIADIC [[gnu::target("general-regs-only")]]
#else
#define KOR_VARIADIC
#endif

#endif
