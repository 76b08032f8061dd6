// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/exception.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <span>

#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "core/variadic.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/string.h"

using namespace kor;

KorException __cex__{};
KorExceptionFrameNode* __fefn__ = nullptr;
KorExceptionFrameNode* __cefn__ = nullptr;

namespace {

enum State : uint32_t { kOpened = 0, kBody = 1, kBodyEnded = 2, kFailed = 3, kOver = 4 };

KorExceptionUncaughtHandler uncaughtHandler = nullptr;
uint32_t uncaughtCount = 0;

void clear_record() {
    __cex__.error = KOR_RESULT_OK;
    __cex__.message[0] = '\0';
}

// Standard output is flushed first because SIGABRT would lose what a pipe still buffers.
void abort_by_signal() {
    std::fflush(stdout);
    std::raise(SIGABRT);
}

void default_uncaught_handler(int16_t code, const char* message) {
    if (message == nullptr) {
        std::printf("Uncaught error: %hi\n", code);
    } else {
        std::printf("Uncaught error: %hi (%s)\n", code, message);
    }
    abort_by_signal();
}

// Of the text no more than there is: most often there is none.
void copy_record(KorException& to, const KorException& from) {
    to.error = from.error;
    to.message[0] = '\0';
    if (from.message[0] == '\0') { return; }
    std::memcpy(to.message, from.message, strnlen(from.message, sizeof from.message - 1) + 1);
}

void record_error(int16_t code, const char* message) {
    __cex__.error = code;
    if (message == nullptr) {
        __cex__.message[0] = '\0';
    } else if (message != __cex__.message) {
        // Moved, because the text may be a part of the record's own.
        const size_t length = strnlen(message, sizeof __cex__.message - 1);
        std::memmove(__cex__.message, message, length);
        __cex__.message[length] = '\0';
    }
}

KorExceptionFrameNode* new_node(KorExceptionFrameNode* previous) {
    void* memory = kor_heap_alloc(sizeof(KorExceptionFrameNode), 1);
    if (memory == nullptr) {
        std::fputs("FATAL: MEMORY ALLOCATION ERROR\n", stdout);
        abort_by_signal();
        return nullptr;
    }
    auto* node = static_cast<KorExceptionFrameNode*>(std::memset(memory, 0, sizeof(KorExceptionFrameNode)));
    node->previous = previous;
    return node;
}

}  // namespace

void kor_exception_throw(KorResult_E code, const char* message) {
    if (code == KOR_RESULT_OK) { return; }
    if (__cefn__ != nullptr) {
        record_error(code, message);
        longjmp(__cefn__->jump, code);
    }
    KorExceptionUncaughtHandler handler = uncaughtHandler != nullptr ? uncaughtHandler : default_uncaught_handler;
    ++uncaughtCount;
    handler(code, message);
    clear_record();
}

KOR_VARIADIC void kor_exception_fthrow(KorResult_E code, const char* format, ...) {
    // Formatted apart from the record, because the arguments may point into the record's own message.
    char message[sizeof __cex__.message];
    va_list arguments;
    va_start(arguments, format);
    kor_string_vformat(message, sizeof message, format, arguments);
    va_end(arguments);
    kor_exception_throw(code, message);
}

KorException* kor_exception_get(KorException* out) {
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    *out = __cex__;
    return out;
}

int16_t kor_exception_get_error() { return __cex__.error; }

const char* kor_exception_get_message() { return __cex__.message; }

KorException* kor_exception_get_exception() { return &__cex__; }

void kor_exception_set_uncaught_handler(KorExceptionUncaughtHandler handler) { uncaughtHandler = handler; }

KorExceptionFrameNode* kor_exception_get_frame_node() { return __cefn__; }

// Nodes are never freed and never relinked: the chain from the first node is a stack that only grows.
KorExceptionFrameNode* kor_exception_next_frame_node() {
    KorExceptionFrameNode*& next = __cefn__ == nullptr ? __fefn__ : __cefn__->next;
    if (next == nullptr) { next = new_node(__cefn__); }
    if (next == nullptr) { return nullptr; }
    __cefn__ = next;
    return __cefn__;
}

KorExceptionFrameNode* kor_exception_previous_frame_node() {
    if (__cefn__ != nullptr) { __cefn__ = __cefn__->previous; }
    return __cefn__;
}

KorExceptionFrameNode* __kor_exception_begin_try__() {
    clear_record();
    KorExceptionFrameNode* node = kor_exception_next_frame_node();
    if (node != nullptr) { node->state = kOpened; }
    return node;
}

KorExceptionFrameNode* __kor_exception_get_frame__() { return __cefn__; }

uint32_t __kor_exception_next_state__(KorExceptionFrameNode* frame) {
    if (frame == nullptr) { return kOver; }
    switch (frame->state) {
        case kOpened:
            frame->state = kBody;
            break;
        case kBody:
            frame->state = kBodyEnded;
            break;
        case kBodyEnded:
            frame->state = __cex__.error != KOR_RESULT_OK ? kFailed : kOver;
            if (frame->state == kOver) { kor_exception_previous_frame_node(); }
            break;
        case kFailed:
            kor_exception_previous_frame_node();
            kor_exception_throw(__cex__.error, __cex__.message);
            frame->state = kOver;
            break;
        default:
            if (__cex__.error != KOR_RESULT_OK) { clear_record(); }
            break;
    }
    return frame->state;
}

bool __kor_exception_catch__(KorExceptionFrameNode* frame, KorResult_E code) {
    if (frame == nullptr || frame->state != kFailed || __cex__.error == KOR_RESULT_OK) { return false; }
    if (code != KOR_RESULT_OK && code != __cex__.error) { return false; }
    frame->state = kOver;
    kor_exception_previous_frame_node();
    return true;
}

bool __kor_exception_cleanup__(KorExceptionFrameNode* frame) {
    if (frame == nullptr || frame->state != kBodyEnded) { return false; }
    if (__cex__.error == KOR_RESULT_OK) {
        frame->state = kOver;
        kor_exception_previous_frame_node();
    }
    return true;
}

void __kor_exception_end_try__() { kor_exception_previous_frame_node(); }

namespace {

void step(KorExceptionFrameNode* frame, const Branch& body, std::span<const CatchBranch> catches,
          const Branch& cleanup) {
    if (frame->state == kBody) { return body(); }
    for (const CatchBranch& candidate : catches) {
        if (__kor_exception_catch__(frame, candidate.code)) { return candidate.branch(); }
    }
    if (cleanup && __kor_exception_cleanup__(frame)) { cleanup(); }
}

}  // namespace

// The library's only setjmp. What the branches capture lives in the caller's frame, not in this one, so nothing here
// or there needs to be volatile.
void kor::run_attempt(Branch body, std::span<const CatchBranch> catches, Branch cleanup) {
    KorException pending;
    copy_record(pending, __cex__);
    const uint32_t uncaught = uncaughtCount;
    if (__kor_exception_begin_try__() == nullptr) { return; }
    // Without its code, so nothing is pending; but the text may be an argument of what is called in here.
    __cex__.message[0] = pending.message[0];
    (void)setjmp(__kor_exception_get_frame__()->jump);
    KorExceptionFrameNode* frame = __kor_exception_get_frame__();
    while (__kor_exception_next_state__(frame) != kOver) { step(frame, body, catches, cleanup); }
    // An error that nobody caught leaves a clear record behind.
    if (uncaught == uncaughtCount) { copy_record(__cex__, pending); }
}

uint32_t kor::uncaught_errors() { return uncaughtCount; }
