// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/rsa.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <span>

#include "core/check.h"
#include "core/raise.h"
#include "crypt/random.h"
#include "crypt/registry.h"
#include "crypt/rsa_key.h"
#include "crypt/stack.h"
#include "quorvel/kor/heap.h"

using namespace kor;
using namespace kor::crypt;

namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kSmallModulus = 128;
constexpr size_t kLargeModulus = 256;

constexpr bool is_modulus_size(size_t size) { return size == kSmallModulus || size == kLargeModulus; }

// A number without its leading zeros.
Bytes significant_bytes(Bytes number) {
    while (!number.empty() && number.front() == 0) { number = number.subspan(1); }
    return number;
}

bool refuse(Bytes N, Bytes e) {
    return refuse_if(N.data() == nullptr, "'N' is NULL") || refuse_if(N.empty(), "'szN' is zero")
           || refuse_if(e.data() == nullptr, "'e' is NULL") || refuse_if(e.empty(), "'sze' is zero")
           || refuse_if(!is_modulus_size(N.size()), "Invalid key size: %d", static_cast<int>(N.size()));
}

bool refuse_bytes(const uint8_t* in, const uint8_t* out) {
    return refuse_null(in, "'in' is NULL") || refuse_null(out, "'out' is NULL");
}

// An empty key with room for a private exponent of so many bytes, or none after the raise.
CryptRsaKey* new_key(size_t exponentSize) {
    const size_t limbs = (exponentSize + sizeof(Limb) - 1) / sizeof(Limb);
    const size_t size = sizeof(CryptRsaKey) + limbs * sizeof(Limb);
    auto* key = static_cast<CryptRsaKey*>(kor_heap_alloc(size, 0));
    if (key == nullptr) { return nullptr; }
    *key = {};
    key->size = size;
    return key;
}

void release(CryptRsaKey* key) {
    explicit_bzero(key, key->size);
    kor_heap_free(key);
}

struct Result {
    int status;
    size_t length;
};

// LibTomCrypt works in an area of our own, because it builds intermediate values where the result is to stand.
template <typename Operation>
Result through_work_area(uint8_t* out, size_t outSize, Operation operation) {
    std::array<uint8_t, kLargeModulus> work;
    unsigned long length = std::min(outSize, work.size());
    const int status = operation(work.data(), &length);
    if (status == CRYPT_OK) { std::memcpy(out, work.data(), length); }
    explicit_bzero(work.data(), work.size());
    return {status, length};
}

size_t length_or_raise(const Result& result) { return succeeded(result.status) ? result.length : 0; }

// None after the raise.
CryptRsaKey* load(Bytes N, Bytes e, Bytes d) {
    const Bytes modulus = significant_bytes(N);
    const Bytes exponent = significant_bytes(e);
    const Bytes privateExponent = significant_bytes(d);
    CryptRsaKey* key = new_key(privateExponent.size());
    if (key == nullptr) { return nullptr; }
    key->modulusSize = modulus.size();
    from_bytes(key->modulus, modulus);
    key->exponentSize = exponent.size();
    std::ranges::copy(exponent.last(std::min(exponent.size(), key->exponent.size())), key->exponent.begin());
    from_bytes(key->private_exponent(), privateExponent);
    return key;
}

// Runs `operation` on the public key, whose exponent is taken for a private one: the same arithmetic, which unlike
// LibTomMath's leaves nothing of what it enciphers. Releases the key before an error leaves.
template <typename Operation>
size_t with_public_key(const CryptRsaPublicKey& pubKey, uint8_t* out, size_t outSize, Operation operation) {
    const Bytes modulus{pubKey.modulus, pubKey.modulusSize};
    const Bytes exponent{pubKey.exponent, pubKey.exponentSize};
    if (refuse(modulus, exponent)) { return 0; }
    if (exponent.size() > sizeof pubKey.exponent) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: %d", static_cast<int>(exponent.size())), 0;
    }
    CryptRsaKey* key = load(modulus, exponent, exponent);
    if (key == nullptr) { return 0; }
    const Result result = through_work_area(out, outSize, [&](uint8_t* work, unsigned long* length) {
        const int status = operation(*key, std::span(work, *length));
        *length = key->modulusSize;
        return status;
    });
    kor_heap_free(key);
    return length_or_raise(result);
}

// OAEP trusts the modulus to be longer than its padding, and a loaded one can be any number.
int check_for_oaep(size_t modulusSize) { return is_modulus_size(modulusSize) ? CRYPT_OK : CRYPT_PK_INVALID_SIZE; }

constexpr size_t kHashSize = 20;
using Hash = std::array<uint8_t, kHashSize>;

// LibTomCrypt's own functions for this keep what they hash, and the message, in memory that they free as it is; here it
// is on the stack. `parts` are hashed as one.
int hash(Hash& out, std::initializer_list<Bytes> parts) {
    const ltc_hash_descriptor& sha1 = hash_descriptor[registry.sha1];
    hash_state state;
    int status = sha1.init(&state);
    for (const Bytes part : parts) {
        if (status == CRYPT_OK) { status = sha1.process(&state, part.data(), part.size()); }
    }
    return status == CRYPT_OK ? sha1.done(&state, out.data()) : status;
}

// Masks `masked` with what the hash makes of `seed`, or takes the mask away.
int mask(std::span<uint8_t> masked, Bytes seed) {
    std::array<uint8_t, 4> counter{};
    for (; !masked.empty(); ++counter.back()) {
        Hash bytes;
        if (const int status = hash(bytes, {seed, counter}); status != CRYPT_OK) { return status; }
        const std::span<uint8_t> part = masked.first(std::min(masked.size(), bytes.size()));
        for (size_t i = 0; i < part.size(); ++i) { part[i] ^= bytes[i]; }
        masked = masked.subspan(part.size());
    }
    return CRYPT_OK;
}

// 00, a random seed under a mask, and, under a mask that the seed makes: the hash of the empty label, zeros, 01 and the
// message.
struct Oaep {
    std::span<uint8_t> block;
    std::span<uint8_t> seed = block.subspan(1, kHashSize);
    std::span<uint8_t> data = block.subspan(1 + kHashSize);

    [[nodiscard]] int encode(Bytes message) const {
        if (message.size() > data.size() - kHashSize - 1) { return CRYPT_PK_INVALID_SIZE; }
        std::ranges::fill(block, uint8_t{0});
        const std::span<uint8_t> tail = data.last(message.size() + 1);
        tail[0] = 0x01;
        std::ranges::copy(message, tail.begin() + 1);
        Hash label;
        int status = hash(label, {});
        std::ranges::copy(label, data.begin());
        if (status == CRYPT_OK) { status = draw(seed.data(), seed.size()); }
        if (status == CRYPT_OK) { status = mask(data, seed); }
        return status == CRYPT_OK ? mask(seed, data) : status;
    }

    // Moves the message to the front of the block. Whatever is wrong, it is the same error.
    [[nodiscard]] int decode(unsigned long* length) const {
        Hash label;
        int status = hash(label, {});
        if (status == CRYPT_OK) { status = mask(seed, data); }
        if (status == CRYPT_OK) { status = mask(data, seed); }
        if (status != CRYPT_OK) { return status; }
        uint8_t wrong = block[0];
        for (size_t i = 0; i < kHashSize; ++i) { wrong |= static_cast<uint8_t>(data[i] ^ label[i]); }
        const auto end = std::find_if(data.begin() + kHashSize, data.end(), [](uint8_t byte) { return byte != 0; });
        if (wrong != 0 || end == data.end() || *end != 0x01) { return CRYPT_INVALID_PACKET; }
        const Bytes message(end + 1, data.end());
        if (message.size() > *length) { return CRYPT_INVALID_PACKET; }
        *length = message.size();
        std::memmove(block.data(), message.data(), message.size());
        return CRYPT_OK;
    }
};

// What the hash and its state take of the stack, where they keep the seed or parts of the block.
constexpr size_t kOaepStack = 2048;

int oaep_encrypt(const CryptRsaKey& key, Bytes in, std::span<uint8_t> work) {
    int status = check_for_oaep(key.modulusSize);
    if (status == CRYPT_OK && work.size() < key.modulusSize) { status = CRYPT_BUFFER_OVERFLOW; }
    if (status != CRYPT_OK) { return status; }
    const std::span<uint8_t> block = work.first(key.modulusSize);
    status = without_trace<kOaepStack>([&] { return Oaep{block}.encode(in); });
    return status == CRYPT_OK ? raise_to_private(key, block, block) : status;
}

int oaep_decrypt(const CryptRsaKey& key, Bytes in, uint8_t* work, unsigned long* length) {
    int status = check_for_oaep(key.modulusSize);
    if (status == CRYPT_OK && in.size() != key.modulusSize) { status = CRYPT_INVALID_PACKET; }
    if (status == CRYPT_OK) { status = raise_to_private(key, in, {work, kLargeModulus}); }
    if (status != CRYPT_OK) { return status; }
    return without_trace<kOaepStack>([&] { return Oaep{{work, key.modulusSize}}.decode(length); });
}

}  // namespace

CryptRsaKey* crypt_rsa_key_new(int32_t size, uint32_t e) {
    if (refuse_if(size < 0 || !is_modulus_size(static_cast<size_t>(size)), "Invalid key size: %d", size)) {
        return nullptr;
    }
    CryptRsaKey* key = new_key(0);
    if (key == nullptr) { return nullptr; }
    const int status = generate(*key, static_cast<size_t>(size), e);
    if (status == CRYPT_OK) { return key; }
    release(key);
    return (void)succeeded(status), nullptr;
}

CryptRsaKey* crypt_rsa_key_load(const uint8_t* N, size_t szN, const uint8_t* e, size_t sze, const uint8_t* d,
                                size_t szd) {
    if (refuse_null(d, "'d' is NULL") || refuse_if(szd == 0, "'szd' is zero")) { return nullptr; }
    if (refuse({N, szN}, {e, sze})) { return nullptr; }
    return load({N, szN}, {e, sze}, {d, szd});
}

void crypt_rsa_key_delete(CryptRsaKey** key) {
    if (key == nullptr || *key == nullptr) { return; }
    release(*key);
    *key = nullptr;
}

int32_t crypt_rsa_key_get_size(const CryptRsaKey* privKey) {
    if (refuse_null(privKey, "'privKey' is NULL")) { return 0; }
    if (!is_modulus_size(privKey->modulusSize)) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported key size: %d", static_cast<int>(privKey->modulusSize)), 0;
    }
    return static_cast<int32_t>(privKey->modulusSize);
}

CryptRsaPublicKey* crypt_rsa_get_public_key(const CryptRsaKey* privKey, CryptRsaPublicKey* out) {
    if (refuse_null(privKey, "'privKey' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    if (!is_modulus_size(privKey->modulusSize)) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported modulus size: %d", static_cast<int>(privKey->modulusSize)),
               nullptr;
    }
    if (privKey->exponentSize > sizeof out->exponent) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: %d",
                     static_cast<int>(privKey->exponentSize)),
               nullptr;
    }
    *out = {};
    out->modulusSize = static_cast<uint32_t>(privKey->modulusSize);
    out->exponentSize = static_cast<uint32_t>(privKey->exponentSize);
    to_bytes({out->modulus, privKey->modulusSize}, privKey->modulus.data());
    std::ranges::copy(privKey->exponent, out->exponent);
    return out;
}

size_t crypt_rsa_private_exp(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                             size_t outSize) {
    if (refuse_null(privKey, "'privKey' is NULL") || refuse_bytes(in, out)) { return 0; }
    return length_or_raise(through_work_area(out, outSize, [&](uint8_t* work, unsigned long* length) {
        const int status = raise_to_private(*privKey, {in, inLen}, {work, *length});
        *length = privKey->modulusSize;
        return status;
    }));
}

size_t crypt_rsa_public_exp(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                            size_t outSize) {
    if (refuse_null(pubKey, "'pubKey' is NULL") || refuse_bytes(in, out)) { return 0; }
    return with_public_key(*pubKey, out, outSize, [&](const CryptRsaKey& key, std::span<uint8_t> work) {
        return raise_to_private(key, {in, inLen}, work);
    });
}

size_t crypt_rsa_encrypt(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                         size_t outSize) {
    if (refuse_null(pubKey, "'pubKey' is NULL") || refuse_bytes(in, out)) { return 0; }
    return with_public_key(*pubKey, out, outSize, [&](const CryptRsaKey& key, std::span<uint8_t> work) {
        return oaep_encrypt(key, {in, inLen}, work);
    });
}

size_t crypt_rsa_decrypt(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out, size_t outSize) {
    if (refuse_null(privKey, "'privKey' is NULL") || refuse_bytes(in, out)) { return 0; }
    const Result result = through_work_area(out, outSize, [&](uint8_t* work, unsigned long* length) {
        return oaep_decrypt(*privKey, {in, inLen}, work, length);
    });
    if (result.status == CRYPT_INVALID_PACKET) { return raise(KOR_RESULT_CRYPT_ERROR, "Invalid OAEP packet"), 0; }
    return length_or_raise(result);
}
