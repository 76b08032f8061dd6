/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_VERSION_H
#define QUORVEL_KOR_VERSION_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * What this library was built from. The texts are fixed when it is built; they are the library's, never none, and live
 * as long as the process. Nothing here raises.
 */

/* Whether the sources were those of the commit, or changed, or not known to version control. */
typedef enum KorVersionGitStatus_E KOR_ENUM_INT32 {
    KOR_VERSION_GIT_STATUS_UNKNOWN = -1,
    KOR_VERSION_GIT_STATUS_CLEAN = 0,
    KOR_VERSION_GIT_STATUS_DIRTY = 1
} KorVersionGitStatus_E;

/*
 * "2026-01-31 23:59:59 UTC", 23 characters: the moment that the environment variable SOURCE_DATE_EPOCH gave the build;
 * or else the date of the commit, so that two builds of one commit are alike; or else, when the sources were not in
 * version control, the time at which the build was first configured.
 */
KOR_API const char* kor_version_build_timestamp(void);

/* The commit, 40 lower-case hexadecimal digits; 40 zeros when the sources were not in version control. */
KOR_API const char* kor_version_git_commit(void);

/* "release-official-sprint-16", the tag of the release line, whatever was built. */
KOR_API const char* kor_version_git_tag(void);

/* "0.1.0", the version of the interface. */
KOR_API const char* kor_version_project(void);

/*
 * Whether the files of the commit were as it has them (clean, 0) or not (dirty, 1); files that are not part of it do
 * not count. Unknown (-1) when the sources were not in version control.
 */
KOR_API KorVersionGitStatus_E kor_version_git_status(void);

KOR_END_DECLS

#endif
