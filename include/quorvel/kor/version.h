/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_VERSION_H
#define QUORVEL_KOR_VERSION_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * What this library was built from. The texts are fixed when it is built and live as long as the process; nothing here
 * raises.
 */

typedef enum KorVersionGitStatus_E KOR_ENUM_INT32 {
    KOR_VERSION_GIT_STATUS_UNKNOWN = -1,
    KOR_VERSION_GIT_STATUS_CLEAN = 0,
    KOR_VERSION_GIT_STATUS_DIRTY = 1
} KorVersionGitStatus_E;

/*
 * "2026-01-31 23:59:59 UTC": the moment that the environment variable SOURCE_DATE_EPOCH gave the build, or else the
 * date of the commit, so that two builds of one commit are alike.
 */
KOR_API const char* kor_version_build_timestamp(void);

/* The commit, 40 hexadecimal digits; 40 zeros when the sources were not in version control. */
KOR_API const char* kor_version_git_commit(void);

/* The tag of the release line: "release-official-sprint-16". */
KOR_API const char* kor_version_git_tag(void);

/* "0.1.0". */
KOR_API const char* kor_version_project(void);

/* Whether the sources differed from the commit; unknown when they were not in version control. */
KOR_API KorVersionGitStatus_E kor_version_git_status(void);

KOR_END_DECLS

#endif
