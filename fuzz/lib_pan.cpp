// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz/link.h"

using namespace quorvel::fuzz;

// Texts of any length, under either kind of key.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    AbecsWkPan key{(input.byte() & 1) != 0 ? ABECS_WK_PAN_TYPE_DES : ABECS_WK_PAN_TYPE_TDES, {1, 2, 3, 4, 5}};
    const std::string text = input.rest();
    // On the heap and of its own size, so that a read behind its end is seen.
    const std::vector<char> bare(text.begin(), text.end());
    for (const auto function : {abecs_pan_encrypt2, abecs_pan_decrypt_track2}) {
        const char* result = nullptr;
        raised_by([&] { result = function(bare.data(), bare.size(), &key); }, [] {});
        require(result == nullptr || std::strlen(result) <= std::max<size_t>(bare.size(), 16),
                "it is no longer than it was, or a block");
    }
    for (const auto function : {abecs_pan_encrypt, abecs_pan_decrypt_track}) {
        raised_by([&] { function(text.c_str(), &key); }, [] {});
    }
    const char* number = nullptr;
    raised_by([&] { number = abecs_pan_identify(text.c_str()); }, [] {});
    require(number == nullptr || std::strlen(number) <= text.size(), "a number stands in the track");
    raised_by([&] { abecs_pan_identify2(bare.data(), bare.size()); }, [] {});
    return 0;
}
