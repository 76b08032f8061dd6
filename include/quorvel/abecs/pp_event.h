/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_PP_EVENT_H
#define QUORVEL_ABECS_PP_EVENT_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* What the PIN pad reports in an ABECS_RSP_DATID_PP_EVENT parameter. */
typedef enum AbecsPpEvent_E KOR_ENUM_INT32 {
    ABECS_PP_EVENT_PRESSED_KEY = 0,
    ABECS_PP_EVENT_PRESSED_KEY_ARROW_UP = 2,
    ABECS_PP_EVENT_PRESSED_KEY_ARROW_DOWN = 3,
    ABECS_PP_EVENT_PRESSED_KEY_F1 = 4,
    ABECS_PP_EVENT_PRESSED_KEY_F2 = 5,
    ABECS_PP_EVENT_PRESSED_KEY_F3 = 6,
    ABECS_PP_EVENT_PRESSED_KEY_F4 = 7,
    ABECS_PP_EVENT_PRESSED_KEY_CLEAR = 8,
    ABECS_PP_EVENT_PRESSED_KEY_CANCEL = 13,
    ABECS_PP_EVENT_MAGNETIC_CARD = 90,
    ABECS_PP_EVENT_ICC_REMOVED = 91,
    ABECS_PP_EVENT_ICC_INSERTED = 92,
    ABECS_PP_EVENT_CTLS_NOT_DETECTED = 93,
    ABECS_PP_EVENT_CTLS_DETECTED = 94
} AbecsPpEvent_E;

/* The enumerator's name, a constant. RUNTIME_ERROR "Unhandled event: %d\n" for any other number. */
KOR_API const char* abecs_pp_event_to_string(AbecsPpEvent_E event);

KOR_END_DECLS

#endif
