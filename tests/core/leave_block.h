/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_TESTS_CORE_LEAVE_BLOCK_H
#define QUORVEL_TESTS_CORE_LEAVE_BLOCK_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum LeaveBranch {
    LEAVE_BODY,
    LEAVE_CATCH,
    LEAVE_CLEANUP_AFTER_SUCCESS,
    LEAVE_CLEANUP_AFTER_ERROR
} LeaveBranch;

typedef enum LeaveWay { LEAVE_BY_RETURN, LEAVE_BY_GOTO, LEAVE_BY_BREAK, LEAVE_BY_CONTINUE } LeaveWay;

/* Each adds a letter to `trace` for what it passes. */
void leave_block_c(char* trace, LeaveBranch branch, LeaveWay how);
void leave_nested_c(char* trace, LeaveBranch branch, LeaveWay how);
void leave_block_cpp(char* trace, LeaveBranch branch, LeaveWay how);
void leave_nested_cpp(char* trace, LeaveBranch branch, LeaveWay how);

#ifdef __cplusplus
}
#endif

#endif
