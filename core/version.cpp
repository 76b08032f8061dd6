// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/version.h"

// Written by the build into its own folder.
#include "version_stamp.h"

const char* kor_version_build_timestamp() { return QUORVEL_BUILD_TIMESTAMP; }

const char* kor_version_git_commit() { return QUORVEL_GIT_COMMIT; }

const char* kor_version_git_tag() { return QUORVEL_GIT_TAG; }

const char* kor_version_project() { return QUORVEL_PROJECT_VERSION; }

KorVersionGitStatus_E kor_version_git_status() {
    switch (QUORVEL_GIT_STATUS) {
        case 0:
            return KOR_VERSION_GIT_STATUS_CLEAN;
        case 1:
            return KOR_VERSION_GIT_STATUS_DIRTY;
        default:
            return KOR_VERSION_GIT_STATUS_UNKNOWN;
    }
}
