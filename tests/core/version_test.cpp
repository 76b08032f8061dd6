// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/version.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// The text with a 9 for every digit.
std::string shape(const char* text) {
    std::string all = text;
    for (char& c : all) { c = c >= '0' && c <= '9' ? '9' : c; }
    return all;
}

TEST(Version, TextsHaveTheirForm) {
    EXPECT_EQ(shape(kor_version_build_timestamp()), "9999-99-99 99:99:99 UTC");
    const std::string commit = kor_version_git_commit();
    EXPECT_EQ(commit.size(), 40U);
    EXPECT_EQ(commit.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_STREQ(kor_version_git_tag(), "release-official-sprint-16");
    EXPECT_STREQ(kor_version_project(), "0.1.0");
    const bool hasCommit = commit != std::string(40, '0');
    const KorVersionGitStatus_E status = kor_version_git_status();
    EXPECT_EQ(status == KOR_VERSION_GIT_STATUS_CLEAN || status == KOR_VERSION_GIT_STATUS_DIRTY, hasCommit);
}

}  // namespace
