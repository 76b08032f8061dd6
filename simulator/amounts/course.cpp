// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/amounts/course.h"

#include <algorithm>

namespace quorvel::sim {

const Course& course_of(uint64_t amount) noexcept {
    static constexpr uint64_t kUnit = 100;
    const auto* found = std::ranges::find(kCourses, amount % kUnit, &Course::cents);
    return found != kCourses.end() ? *found : kCourses.front();
}

}  // namespace quorvel::sim
