/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_TESTS_CORE_TRY_BLOCK_H
#define QUORVEL_TESTS_CORE_TRY_BLOCK_H

#include "quorvel/kor/exception.h"

KOR_BEGIN_DECLS

/* Each runs a try block written in C and adds a letter to `trace` (empty, 32 characters) for each branch it passes. */
void try_branches(char* trace, int16_t code);
void try_unmatched(char* trace);
void try_error_in_cleanup(char* trace);
void try_error_in_catch(char* trace);
void try_nested(char* trace, int depth);

KOR_END_DECLS

#endif
