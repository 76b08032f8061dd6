// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/version.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace {

TEST(Version, TextsHaveTheirForm) {
    const auto matches = [](const char* text, const char* form) { return std::regex_match(text, std::regex(form)); };
    EXPECT_TRUE(matches(kor_version_build_timestamp(), "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d UTC"));
    EXPECT_TRUE(matches(kor_version_git_commit(), "[0-9a-f]{40}"));
    EXPECT_STREQ(kor_version_git_tag(), "release-official-sprint-16");
    EXPECT_STREQ(kor_version_project(), "0.1.0");
    const KorVersionGitStatus_E status = kor_version_git_status();
    EXPECT_EQ(status == KOR_VERSION_GIT_STATUS_CLEAN || status == KOR_VERSION_GIT_STATUS_DIRTY,
              kor_version_git_commit() != std::string(40, '0'));
}

}  // namespace
