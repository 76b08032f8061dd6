// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_FILE_H
#define QUORVEL_CORE_FILE_H

#include "quorvel/kor/file.h"

namespace kor {

// As kor_file_open, except that a system without memory is a MALLOC_ERROR too. Neither argument may be null.
[[nodiscard]] KorFile* open_file(const char* path, const char* mode);

}  // namespace kor

#endif
