/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#define LEAVE_BLOCK leave_block_c
#define LEAVE_NESTED leave_nested_c
#include "tests/core/leave_block.inc"
