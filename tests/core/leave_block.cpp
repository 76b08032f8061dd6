// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#define LEAVE_BLOCK leave_block_cpp
#define LEAVE_NESTED leave_nested_cpp
#include "tests/core/leave_block.inc"
