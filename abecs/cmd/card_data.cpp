// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/card_data.h"

#include <cstring>

#include "abecs/comm/comm.h"
#include "core/attempt.h"
#include "quorvel/abecs/pan.h"

using namespace abecs;
using namespace kor;

bool abecs::decipher_card_data(const AbecsComm* link, char* text, size_t length) {
    if (!has_pan_key(link)) { return false; }
    AbecsWkPan key{};
    bool done = false;
    attempt([&] {
        copy_pan_key(link, key);
        // The clear text is never longer than what it is made of, so the room of that is enough.
        const char* clear = abecs_pan_decrypt_track2(text, strnlen(text, length), &key);
        std::memcpy(text, clear, std::strlen(clear) + 1);
        // The result is static: the next one replaces it as a whole.
        abecs_pan_decrypt_track2("", 0, &key);
        done = true;
    }).cleanup([&] {
          explicit_bzero(&key, sizeof key);
      }).run();
    return done;
}
