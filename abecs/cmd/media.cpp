// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/media.h"

#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace abecs {

MediaName::MediaName(const char* filename) { kor_string_to_upper(text, filename); }

bool check_media_name(const char* filename) {
    if (filename == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'filename' is NULL"), false; }
    const size_t length = kor_string_len(filename);
    if (length == 0) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'filename' is empty"), false; }
    if (length > kMediaNameWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'filename' is too long (max: %d, requested: %zu)",
                     static_cast<int>(kMediaNameWidth), length),
               false;
    }
    return true;
}

}  // namespace abecs
