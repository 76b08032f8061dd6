/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_VERSION_H
#define QUORVEL_KOR_VERSION_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef enum KorVersionGitStatus_E KOR_ENUM_INT32 {
    KOR_VERSION_GIT_STATUS_UNKNOWN = -1,
    KOR_VERSION_GIT_STATUS_CLEAN = 0,
    KOR_VERSION_GIT_STATUS_DIRTY = 1
} KorVersionGitStatus_E;

KOR_API const char* kor_version_build_timestamp(void);
KOR_API const char* kor_version_git_commit(void);
KOR_API const char* kor_version_git_tag(void);
KOR_API const char* kor_version_project(void);
KOR_API KorVersionGitStatus_E kor_version_git_status(void);

KOR_END_DECLS

#endif
