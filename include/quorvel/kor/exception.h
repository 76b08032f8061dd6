/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_EXCEPTION_H
#define QUORVEL_KOR_EXCEPTION_H

#include <setjmp.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/result.h"

KOR_BEGIN_DECLS

/*
 * Errors and try blocks.
 *
 * 1. A failure is raised: a code and a text of at most 255 characters, which reads "[KOR_RESULT_NAME] detail", go to
 *    the innermost open try block.
 * 2. With no try block open, the uncaught handler is called. The default one prints "Uncaught error: ..." to standard
 *    output and raises SIGABRT. If the handler returns, the function that raised leaves at once with a harmless result
 *    (none, 0, false, an empty text; of commands see quorvel/quorvel.h) and without having done its work.
 * 3. One error is pending at a time, in one process-wide record. A raise replaces it; opening a try block of your own
 *    clears it, and so does the end of a block that has dealt with it. Only these clear it when they succeed:
 *    __kor_exception_begin_try__ and __kor_exception_next_state__. Every other function of the library leaves it as it
 *    is unless it raises, whether it stores something or sends a command: so a clean-up may call what it likes, and a
 *    catch branch may do so before it looks at what it caught.
 * 4. A raise is a longjmp: it runs no destructors. In C++ keep objects that have one out of try blocks.
 * 5. Nothing here is guarded: use the library from one thread at a time.
 */

/* The error record: the pending error, or code 0 and an empty text. */
typedef struct KorException {
    int16_t error;     /* the code */
    char message[256]; /* the text */
} KorException;

/* A node of the stack of open try blocks, which the library keeps. */
typedef struct KorExceptionFrameNode KorExceptionFrameNode;

/* One open try block. Nodes are made on demand and used again; they are never freed. */
struct KorExceptionFrameNode {
    uint32_t state;                  /* 0 opened, 1 body, 2 body ended, 3 no branch has taken the error yet, 4 over */
    jmp_buf jump;                    /* where a raise goes */
    KorExceptionFrameNode* previous; /* the block around it */
    KorExceptionFrameNode* next;     /* the node for the next block inside */
};

/* `message` may be none and is only valid during the call. */
typedef void (*KorExceptionUncaughtHandler)(int16_t code, const char* message);

extern KOR_API KorException __cex__;            /* the error record */
extern KOR_API KorExceptionFrameNode* __fefn__; /* the outermost frame node, or none until the first try block */
extern KOR_API KorExceptionFrameNode* __cefn__; /* the current frame node, or none outside every try block */

/* Raises `code` with `message` as it stands (none: an empty text). Code 0 does nothing. May return, see above. */
KOR_API void kor_exception_throw(KorResult_E code, const char* message);

/*
 * As kor_exception_throw with a printf-like text, cut to 255 characters. A text that is not your own goes in as the
 * argument of "%s": a percent sign in it would be read as a conversion.
 */
KOR_API KOR_PRINTF(2, 3) void kor_exception_fthrow(KorResult_E code, const char* format, ...);

/* Copies the pending error into `out` and returns `out`. ILLEGAL_ARGUMENT "'out' is NULL". */
KOR_API KorException* kor_exception_get(KorException* out);

/* The pending code, or 0. */
KOR_API int16_t kor_exception_get_error(void);

/* The pending text, never none; valid until the next error is raised or cleared. */
KOR_API const char* kor_exception_get_message(void);

/* The error record itself; the library's for the life of the process. */
KOR_API KorException* kor_exception_get_exception(void);

/* Installs the handler for errors outside every try block; none restores the default. */
KOR_API void kor_exception_set_uncaught_handler(KorExceptionUncaughtHandler handler);

/* The frame stack under the try blocks: the current node; a node pushed; a node popped (then the new current one). */
KOR_API KorExceptionFrameNode* kor_exception_get_frame_node(void);
KOR_API KorExceptionFrameNode* kor_exception_next_frame_node(void);
KOR_API KorExceptionFrameNode* kor_exception_previous_frame_node(void);

/* What the try block below is made of; for use through it only. */
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
 * clean-up. The clean-up runs on success and on error, on error before the catch branches. It must not open a try block
 * of its own: that would clear the pending error, and the block would go on as if all had gone well. What it raises
 * takes the pending error's place. Keep locals that the block sets and later code reads `volatile`.
 *
 * `continue` ends the branch that it stands in. `return`, `goto` and `break` (which leaves the block, not a loop or a
 * switch around it) close the block where they stand: its clean-up does not run, and a pending error is dropped. That
 * takes GCC or Clang; with another compiler never leave a block so, because it would stay open, and the next error
 * would jump into a function that has ended.
 */
#ifdef __GNUC__
#define KOR_WHEN_LEFT(function) __attribute__((__cleanup__(function)))

/* Runs when control leaves a block in whatever way. An error that goes on past it has closed it before its jump. */
static inline void kor_leave_try_(KorExceptionFrameNode* const* left) {
    KorExceptionFrameNode* const frame = *left;
    if (frame->state != 4) {
        const KorExceptionFrameNode* open = kor_exception_get_frame_node();
        while (open && open != frame) { open = open->previous; }
        while (open == frame && kor_exception_get_frame_node() != frame->previous) { __kor_exception_end_try__(); }
        frame->state = 4;
    }
    (void)__kor_exception_next_state__(frame);
}
#else
#define KOR_WHEN_LEFT(function)
#endif

/* clang-format off */
/* Opens a block; its body follows in braces. */
#define KOR_TRY                                                                      \
    do {                                                                             \
        if (__kor_exception_begin_try__() == NULL) break;                            \
        (void)setjmp(__kor_exception_get_frame__()->jump);                           \
        _Pragma("GCC diagnostic push")                                               \
        _Pragma("GCC diagnostic ignored \"-Wshadow\"")                               \
        KOR_WHEN_LEFT(kor_leave_try_)                                                \
        KorExceptionFrameNode* const kor_frame_ = __kor_exception_get_frame__();     \
        _Pragma("GCC diagnostic pop")                                                \
        while (__kor_exception_next_state__(kor_frame_) != 4) {                      \
            if (kor_frame_->state == 1) {

/* A branch for the errors with this code, or, with KOR_RESULT_OK, for every error. */
#define KOR_CATCH(code)                                                              \
            } else if (__kor_exception_catch__(kor_frame_, (code))) {

/* What is done however the body ends. */
#define KOR_CLEANUP                                                                  \
            } else if (__kor_exception_cleanup__(kor_frame_)) {

/* Ends the block. */
#define KOR_END_TRY                                                                  \
            }                                                                        \
        }                                                                            \
    } while (0)
/* clang-format on */

#endif
