// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/construct.h"

void kor::complete_or_discard(Branch complete, Branch discard) {
    bool done = false;
    attempt([&] {
        complete();
        done = true;
    })
        .cleanup([&] {
            if (!done) { discard(); }
        })
        .run();
}
