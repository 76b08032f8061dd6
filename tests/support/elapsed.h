// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_ELAPSED_H
#define QUORVEL_TESTS_SUPPORT_ELAPSED_H

#include <chrono>
#include <gtest/gtest.h>

namespace support {

// The time since it was made. Upper limits are there to tell one wait of the protocol from another, so leave room for
// a busy machine.
class Elapsed {
public:
    [[nodiscard]] testing::AssertionResult between(std::chrono::milliseconds least,
                                                   std::chrono::milliseconds most) const {
        const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
        if (time >= least && time < most) { return testing::AssertionSuccess(); }
        return testing::AssertionFailure() << "took " << time.count() << " ms";
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

}  // namespace support

#endif
