// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/system.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <sys/time.h>

#include "core/raise.h"

using namespace kor;

int64_t kor_system_current_time_millis() {
    timeval now{};
    if (gettimeofday(&now, nullptr) != 0) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "gettimeofday() error: %d", errno), 0;
    }
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_usec / 1000;
}

int32_t kor_system_random(int32_t min, int32_t max) {
    static bool seeded = false;
    if (!seeded) {
        seeded = true;
        std::srand(static_cast<unsigned>(std::time(nullptr)));
    }
    // In 64 bits, because the whole range of int32_t has one value more than 32 bits can count.
    const int64_t count = int64_t{max} - min + 1;
    if (count == 0) { return min; }
    return static_cast<int32_t>(std::rand() % count + min);
}

// Fixed, whatever the library was built for: applications compare these texts.
const char* kor_system_os_name() { return "osx"; }

const char* kor_system_os_arch() { return "x86"; }

const char* kor_system_get_env(const char* name) { return name != nullptr ? std::getenv(name) : nullptr; }
