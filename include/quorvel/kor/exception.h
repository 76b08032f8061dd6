/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_EXCEPTION_H
#define QUORVEL_KOR_EXCEPTION_H

#include <setjmp.h>
#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/result.h"

KOR_BEGIN_DECLS

typedef struct KorException {
    int16_t error;
    char message[256];
} KorException;

typedef struct KorExceptionFrameNode KorExceptionFrameNode;

struct KorExceptionFrameNode {
    uint32_t state;
    jmp_buf jump;
    KorExceptionFrameNode* previous;
    KorExceptionFrameNode* next;
};

typedef void (*KorExceptionUncaughtHandler)(int16_t code, const char* message);

extern KOR_API KorException __cex__;
extern KOR_API KorExceptionFrameNode* __fefn__;
extern KOR_API KorExceptionFrameNode* __cefn__;
KOR_API void kor_exception_throw(KorResult_E code, const char* message);
KOR_API void kor_exception_fthrow(KorResult_E code, const char* format, ...);
KOR_API KorException* kor_exception_get(KorException* out);
KOR_API int16_t kor_exception_get_error(void);
KOR_API const char* kor_exception_get_message(void);
KOR_API KorException* kor_exception_get_exception(void);
KOR_API void kor_exception_set_uncaught_handler(KorExceptionUncaughtHandler handler);
KOR_API KorExceptionFrameNode* kor_exception_get_frame_node(void);
KOR_API KorExceptionFrameNode* kor_exception_next_frame_node(void);
KOR_API KorExceptionFrameNode* kor_exception_previous_frame_node(void);
KOR_API KorExceptionFrameNode* __kor_exception_begin_try__(void);
KOR_API KorExceptionFrameNode* __kor_exception_get_frame__(void);
KOR_API uint32_t __kor_exception_next_state__(KorExceptionFrameNode* frame);
KOR_API bool __kor_exception_catch__(KorExceptionFrameNode* frame, KorResult_E code);
KOR_API bool __kor_exception_cleanup__(KorExceptionFrameNode* frame);
KOR_API void __kor_exception_end_try__(void);

KOR_END_DECLS

/*
 * The try block of C callers:
 *
 *     AbecsComm *volatile pinpad = NULL;
 *     KOR_TRY {
 *         pinpad = abecs_comm_open("/dev/ttyACM0");
 *     } KOR_CATCH(KOR_RESULT_FILE_NOT_FOUND) {
 *         ...
 *     } KOR_CATCH(KOR_RESULT_OK) {            every other error
 *         fprintf(stderr, "%s\n", kor_exception_get_message());
 *     } KOR_CLEANUP {
 *         ...
 *     } KOR_END_TRY;
 *
 * Catch branches are tried in the order written; an error that none takes goes on to the enclosing block after the
 * clean-up. The clean-up runs on success and on error (on error before the catch branches) and must not open a try
 * block of its own: that would clear the pending error. Keep locals that the block sets and later code reads
 * `volatile`. Never leave a block by return, break, continue or goto: its frame would stay open.
 */
#define KOR_TRY                                                                               \
    do {                                                                                      \
        if (__kor_exception_begin_try__() == NULL) break;                                     \
        (void)setjmp(__kor_exception_get_frame__()->jump);                                    \
        _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wshadow\"")         \
            KorExceptionFrameNode* const kor_frame_ = __kor_exception_get_frame__();          \
        _Pragma("GCC diagnostic pop") while (__kor_exception_next_state__(kor_frame_) != 4) { \
            if (kor_frame_->state == 1) {
#define KOR_CATCH(code) \
    }                   \
    else if (__kor_exception_catch__(kor_frame_, (code))) {
#define KOR_CLEANUP \
    }               \
    else if (__kor_exception_cleanup__(kor_frame_)) {
#define KOR_END_TRY \
    }               \
    }               \
    }               \
    while (0)

#endif
