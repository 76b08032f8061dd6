// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_MEDIA_H
#define QUORVEL_ABECS_CMD_MEDIA_H

#include <cstddef>

#include "abecs/data/param.h"

// What the media file commands have in common.
namespace abecs {

inline constexpr size_t kMediaNameWidth = 8;

// One block of a file is one parameter, and no block of parameters holds more than one as long as this.
inline constexpr size_t kMaxMediaBlock = 999 - kParamHead;
static_assert(kMaxMediaBlock == 995);

// The PIN pad's name for a file: in upper case. Only for names that were found to be short enough.
struct MediaName {
    char text[kMediaNameWidth + 1]{};

    explicit MediaName(const char* filename);
};

// False, with an error raised, for a name that cannot be loaded or shown.
[[nodiscard]] bool check_media_name(const char* filename);

}  // namespace abecs

#endif
