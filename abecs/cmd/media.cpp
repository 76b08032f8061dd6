// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/media.h"

#include "core/check.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace abecs {

MediaName::MediaName(const char* filename) { kor_string_to_upper(text, filename); }

bool refuse_media_name(const char* filename) {
    if (refuse_null(filename, "'filename' is NULL")) { return true; }
    const size_t length = kor_string_len(filename);
    return refuse_if(length == 0, "'filename' is empty")
           || refuse_if(length > kMediaNameWidth, "'filename' is too long (max: %d, requested: %zu)",
                        static_cast<int>(kMediaNameWidth), length);
}

}  // namespace abecs
