// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/thread.h"

#include <cerrno>
#include <unistd.h>

#include "core/check.h"
#include "core/raise.h"

using namespace kor;

void kor_thread_sleep(uint64_t millis) {
    if (refuse_if(millis == 0, "millis == 0")) { return; }
    if (usleep(static_cast<useconds_t>(millis * 1000)) != 0) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "usleep() error: %d", errno);
    }
}
