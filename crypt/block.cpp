// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/block.h"

#include <array>
#include <cstring>

#include "core/check.h"
#include "crypt/stack.h"

namespace kor::crypt {

namespace {

constexpr std::array<uint8_t, MAXBLOCKSIZE> kZeroIv{};

// One mode as LibTomCrypt has it: the four calls, and the context that they share.
template <typename ModeContext, auto StartFunction, auto EncryptFunction, auto DecryptFunction, auto DoneFunction>
struct Mode {
    using Context = ModeContext;
    static constexpr auto kStart = StartFunction;
    static constexpr auto kEncrypt = EncryptFunction;
    static constexpr auto kDecrypt = DecryptFunction;
    static constexpr auto kDone = DoneFunction;
};

using Ecb = Mode<symmetric_ECB, ecb_start, ecb_encrypt, ecb_decrypt, ecb_done>;
using Cbc = Mode<symmetric_CBC, cbc_start, cbc_encrypt, cbc_decrypt, cbc_done>;

bool refuse(const BlockCipher& cipher, const Key& key, const Blocks& blocks) {
    return kor::refuse_if(key.bytes == nullptr, "%s", cipher.noKey)
           || kor::refuse_if(!cipher.takes(key.size), "Invalid key size: %zu", key.size)
           || kor::refuse_null(blocks.in, "'in' is NULL") || kor::refuse_null(blocks.out, "'out' is NULL")
           || kor::refuse_if(blocks.len == 0, "'len' is zero")
           || kor::refuse_if(blocks.len % cipher.blockSize != 0, "'len' must be a multiple of %d",
                             static_cast<int>(cipher.blockSize));
}

// LibTomCrypt leaves round keys and clear blocks in the frames of its functions, about 600 bytes deep; where its calls
// are bound lazily, the dynamic linker saves registers that hold them as far as 3 KiB down.
constexpr size_t kUsedStack = 4096;

template <typename Mode, typename... Iv>
int process(int index, Direction direction, const Key& key, const Blocks& blocks, Iv... iv) {
    // A finished mode still holds both key schedules.
    using Context = typename Mode::Context;
    return without_trace<sizeof(Context) + kUsedStack>([&] {
        Context context;
        const int status = Mode::kStart(index, iv..., key.bytes, static_cast<int>(key.size), 0, &context);
        if (status != CRYPT_OK) { return status; }
        const auto run = direction == Direction::kEncrypt ? Mode::kEncrypt : Mode::kDecrypt;
        const int processed = run(blocks.in, blocks.out, blocks.len, &context);
        const int finished = Mode::kDone(&context);
        return processed != CRYPT_OK ? processed : finished;
    });
}

}  // namespace

void ecb(const BlockCipher& cipher, Direction direction, const Key& key, const Blocks& blocks) {
    if (refuse(cipher, key, blocks)) { return; }
    (void)succeeded(process<Ecb>(registry.*cipher.index, direction, key, blocks));
}

void cbc(const BlockCipher& cipher, Direction direction, const Key& key, const Blocks& blocks, const uint8_t* iv) {
    if (refuse(cipher, key, blocks)) { return; }
    const uint8_t* first = iv != nullptr ? iv : kZeroIv.data();
    (void)succeeded(process<Cbc>(registry.*cipher.index, direction, key, blocks, first));
}

}  // namespace kor::crypt
