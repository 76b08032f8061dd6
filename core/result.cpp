// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/result.h"

#include <array>
#include <string_view>

#include "core/raise.h"

using namespace kor;

namespace {

constexpr std::array<const char*, 14> kNames{
    "KOR_RESULT_OK",
    "KOR_RESULT_RUNTIME_ERROR",
    "KOR_RESULT_ILLEGAL_ARGUMENT",
    "KOR_RESULT_ILLEGAL_STATE",
    "KOR_RESULT_INDEX_OUT_OF_BOUNDS",
    "KOR_RESULT_MALLOC_ERROR",
    "KOR_RESULT_IO_ERROR",
    "KOR_RESULT_TIMEOUT_ERROR",
    "KOR_RESULT_FILE_NOT_FOUND",
    "KOR_RESULT_ENCODING_ERROR",
    "KOR_RESULT_DEVICE_BUSY",
    "KOR_RESULT_PERMISSION_DENIED",
    "KOR_RESULT_PROTOCOL_ERROR",
    "KOR_RESULT_CRYPT_ERROR",
};
static_assert(std::string_view{kNames[KOR_RESULT_CRYPT_ERROR]} == "KOR_RESULT_CRYPT_ERROR");
static_assert(std::string_view{kNames[KOR_RESULT_TIMEOUT_ERROR]} == "KOR_RESULT_TIMEOUT_ERROR");

}  // namespace

const char* kor_result_to_string(KorResult_E code) {
    if (code < 0 || static_cast<size_t>(code) >= kNames.size()) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled KorResult_E: %d\n", code), "";
    }
    return kNames[static_cast<size_t>(code)];
}
