// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_MEDIA_H
#define QUORVEL_ABECS_CMD_MEDIA_H

#include <cstddef>

#include "abecs/data/limits.h"
#include "abecs/data/param.h"
#include "abecs/data/spe_param.h"

// What the media file commands have in common.
namespace abecs {

inline constexpr size_t kMediaNameWidth = width_of(ABECS_SPE_ID_MFNAME);

// One block of a file is one parameter, and no block of parameters holds more than one as long as this.
inline constexpr size_t kMaxMediaBlock = kMaxBlock - kParamHead;
static_assert(kMaxMediaBlock == 995);

// The PIN pad's name for a file: in upper case. Only for names that were found to be short enough.
struct MediaName {
    char text[kMediaNameWidth + 1]{};

    explicit MediaName(const char* filename);
};

// Whether the name cannot be loaded or shown; an error has then been raised.
[[nodiscard]] bool refuse_media_name(const char* filename);

}  // namespace abecs

#endif
