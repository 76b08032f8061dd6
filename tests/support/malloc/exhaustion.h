// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_MALLOC_EXHAUSTION_H
#define QUORVEL_TESTS_SUPPORT_MALLOC_EXHAUSTION_H

#include <gtest/gtest.h>

#include "quorvel/kor/exception.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace support {

enum class Raise { kCaught, kReturns };
constexpr Raise kBothRaises[]{Raise::kCaught, Raise::kReturns};

// Runs `act` with its n-th allocation failing; false once it gets by without. The failure must be raised once, leave
// no try block open and none of the memory that `act` took.
template <typename Act>
bool fails(size_t n, Raise raise, Act act) {
    // The memory of the try blocks is not the matter: it is kept for good, so take it first.
    raised_by([] { raised_by([] { raised_by([] {}); }); });
    const FailingMalloc failing(n);
    Raised raised;
    if (raise == Raise::kCaught) {
        raised = raised_by(act);
    } else {
        const ReturningRaises raises;
        act();
        EXPECT_LE(raises.all().size(), 1U) << "allocation " << n;
        if (!raises.all().empty()) { raised = raises.all().front(); }
    }
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
    EXPECT_EQ(raised, failing.failed() ? error(KOR_RESULT_MALLOC_ERROR, "") : Raised{}) << "allocation " << n;
    if (failing.failed()) { EXPECT_EQ(failing.kept(), 0U) << "allocation " << n; }
    return failing.failed();
}

// Makes an object and deletes it, which must leave no pointer to it.
template <auto kNew, auto kDelete>
void make() {
    auto* made = kNew();
    kDelete(&made);
    EXPECT_EQ(made, nullptr);
}

// Each allocation of `act` fails once, with either kind of raise; returns how many there are.
inline size_t allocations_of(void (*act)()) {
    size_t n = 1;
    for (const Raise raise : kBothRaises) {
        for (n = 1; fails(n, raise, act); ++n) {}
    }
    return n - 1;
}

}  // namespace support

#endif
