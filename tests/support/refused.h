// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_REFUSED_H
#define QUORVEL_TESTS_SUPPORT_REFUSED_H

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

#include "quorvel/abecs/rsp_stat.h"
#include "tests/support/raised.h"

namespace support {

// A function that refuses what it was given: it raises the error, and the same one once where the raise returns. What
// it returns then is a status that nobody takes for success, the error's code, or no object.
template <typename Call>
void expect_refused(const Raised& error, Call&& call) {
    EXPECT_EQ(raised_by([&] { call(); }), error);
    const ReturningRaises handler;
    if constexpr (std::is_void_v<decltype(call())>) {
        call();
    } else if constexpr (std::is_same_v<decltype(call()), KorResult_E>) {
        EXPECT_EQ(call(), error.code) << error;
    } else if constexpr (std::is_pointer_v<decltype(call())>) {
        EXPECT_EQ(call(), nullptr) << error;
    } else {
        EXPECT_EQ(call(), ABECS_RSP_STAT_ST_INTERR) << error;
    }
    EXPECT_EQ(handler.all(), std::vector{error});
}

}  // namespace support

// EXPECT_REFUSED(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_cmd_gts(link.comm, 0, nullptr));
#define EXPECT_REFUSED(code, detail, ...) \
    support::expect_refused(support::error(code, detail), [&] { return __VA_ARGS__; })

#endif
