// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/exception.h"

#include <gtest/gtest.h>

#include "tests/support/raised.h"
TEST(Exception, NullOut) { EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_exception_get(nullptr)); }
