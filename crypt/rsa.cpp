// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/rsa.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <tommath.h>

#include "core/raise.h"
#include "crypt/registry.h"
#include "crypt/rsa_key.h"
#include "quorvel/kor/heap.h"

using kor::raise;
using kor::crypt::registry;
using kor::crypt::succeeded;

namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kSmallModulus = 128;
constexpr size_t kLargeModulus = 256;

constexpr bool is_modulus_size(size_t size) { return size == kSmallModulus || size == kLargeModulus; }

// LibTomCrypt takes keys that it does not change as variables.
rsa_key* borrowed(const CryptRsaKey* privKey) { return const_cast<rsa_key*>(&privKey->key); }

size_t size_of(void* number) { return ltc_mp.unsigned_size(number); }

void wipe_number(void* number) {
    const auto* digits = static_cast<const mp_int*>(number);
    if (digits != nullptr) { explicit_bzero(digits->dp, sizeof(mp_digit) * static_cast<size_t>(digits->alloc)); }
}

// Freeing alone can leave the private numbers in the heap.
void release(rsa_key* key) {
    for (void* number : std::array{key->d, key->p, key->q, key->qP, key->dP, key->dQ}) { wipe_number(number); }
    rsa_free(key);
    explicit_bzero(key, sizeof *key);
}

bool checked(Bytes N, Bytes e) {
    if (N.data() == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'N' is NULL"), false; }
    if (N.empty()) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'szN' is zero"), false; }
    if (e.data() == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'e' is NULL"), false; }
    if (e.empty()) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'sze' is zero"), false; }
    if (!is_modulus_size(N.size())) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: %d", static_cast<int>(N.size())), false;
    }
    return true;
}

// Without `d` it becomes a public key. A key that could not be set holds nothing to release.
int set_key(rsa_key* key, Bytes N, Bytes e, Bytes d) {
    return rsa_set_key(N.data(), N.size(), e.data(), e.size(), d.data(), d.size(), key);
}

bool load_public(rsa_key* key, const CryptRsaPublicKey& pubKey) {
    const uint32_t exponentSize = pubKey.exponentSize;
    if (!checked({pubKey.modulus, pubKey.modulusSize}, {pubKey.exponent, exponentSize})) { return false; }
    if (exponentSize > sizeof pubKey.exponent) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: %d", static_cast<int>(exponentSize)), false;
    }
    return succeeded(set_key(key, {pubKey.modulus, pubKey.modulusSize}, {pubKey.exponent, exponentSize}, {}));
}

// A new key that `make` fills, or none after its error.
template <typename Make>
CryptRsaKey* new_key(Make make) {
    auto* key = static_cast<CryptRsaKey*>(kor_heap_alloc(sizeof(CryptRsaKey), 0));
    if (key == nullptr) { return nullptr; }
    *key = {};
    const int status = make(&key->key);
    if (status == CRYPT_OK) { return key; }
    explicit_bzero(key, sizeof *key);
    kor_heap_free(key);
    return (void)succeeded(status), nullptr;
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

// Runs `operation` on the public key and releases what it was loaded into before an error leaves.
template <typename Operation>
size_t with_public_key(const CryptRsaPublicKey* pubKey, uint8_t* out, size_t outSize, Operation operation) {
    rsa_key key{};
    if (!load_public(&key, *pubKey)) { return 0; }
    const Result result = through_work_area(
        out, outSize, [&](uint8_t* work, unsigned long* length) { return operation(&key, work, length); });
    release(&key);
    return length_or_raise(result);
}

// LibTomCrypt's OAEP trusts the modulus to be longer than its padding, and a loaded one can be any number.
int check_for_oaep(rsa_key* key) { return is_modulus_size(size_of(key->N)) ? CRYPT_OK : CRYPT_PK_INVALID_SIZE; }

int oaep_encrypt(rsa_key* key, Bytes in, uint8_t* out, unsigned long* length) {
    if (const int status = check_for_oaep(key); status != CRYPT_OK) { return status; }
    return rsa_encrypt_key_ex(in.data(), in.size(), out, length, nullptr, 0, nullptr, registry.sprng, registry.sha1,
                              LTC_PKCS_1_OAEP, key);
}

int oaep_decrypt(rsa_key* key, Bytes in, uint8_t* out, unsigned long* length) {
    if (const int status = check_for_oaep(key); status != CRYPT_OK) { return status; }
    int valid = 0;
    const int status =
        rsa_decrypt_key_ex(in.data(), in.size(), out, length, nullptr, 0, registry.sha1, LTC_PKCS_1_OAEP, &valid, key);
    return status == CRYPT_OK && valid == 0 ? CRYPT_INVALID_PACKET : status;
}

}  // namespace

CryptRsaKey* crypt_rsa_key_new(int32_t size, uint32_t e) {
    if (size < 0 || !is_modulus_size(static_cast<size_t>(size))) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: %d", size), nullptr;
    }
    return new_key([&](rsa_key* key) { return rsa_make_key(nullptr, registry.sprng, size, e, key); });
}

CryptRsaKey* crypt_rsa_key_load(const uint8_t* N, size_t szN, const uint8_t* e, size_t sze, const uint8_t* d,
                                size_t szd) {
    if (d == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'d' is NULL"), nullptr; }
    if (szd == 0) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'szd' is zero"), nullptr; }
    if (!checked({N, szN}, {e, sze})) { return nullptr; }
    return new_key([&](rsa_key* key) { return set_key(key, {N, szN}, {e, sze}, {d, szd}); });
}

void crypt_rsa_key_delete(CryptRsaKey** key) {
    if (key == nullptr || *key == nullptr) { return; }
    release(&(*key)->key);
    kor_heap_free(*key);
    *key = nullptr;
}

int32_t crypt_rsa_key_get_size(const CryptRsaKey* privKey) {
    if (privKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'privKey' is NULL"), 0; }
    const int32_t size = rsa_get_size(borrowed(privKey));
    if (size < 0 || !is_modulus_size(static_cast<size_t>(size))) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported key size: %d", size), 0;
    }
    return size;
}

CryptRsaPublicKey* crypt_rsa_get_public_key(const CryptRsaKey* privKey, CryptRsaPublicKey* out) {
    if (privKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'privKey' is NULL"), nullptr; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), nullptr; }
    const size_t modulusSize = size_of(privKey->key.N);
    if (!is_modulus_size(modulusSize)) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported modulus size: %d", static_cast<int>(modulusSize)), nullptr;
    }
    const size_t exponentSize = size_of(privKey->key.e);
    if (exponentSize > sizeof out->exponent) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: %d", static_cast<int>(exponentSize)),
               nullptr;
    }
    CryptRsaPublicKey key{
        .modulusSize = static_cast<uint32_t>(modulusSize),
        .exponentSize = static_cast<uint32_t>(exponentSize),
        .modulus = {},
        .exponent = {},
    };
    if (!succeeded(ltc_mp.unsigned_write(privKey->key.N, key.modulus))) { return nullptr; }
    if (!succeeded(ltc_mp.unsigned_write(privKey->key.e, key.exponent))) { return nullptr; }
    *out = key;
    return out;
}

size_t crypt_rsa_private_exp(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                             size_t outSize) {
    if (privKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'privKey' is NULL"), 0; }
    if (in == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL"), 0; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), 0; }
    return length_or_raise(through_work_area(out, outSize, [&](uint8_t* work, unsigned long* length) {
        return rsa_exptmod(in, inLen, work, length, PK_PRIVATE, borrowed(privKey));
    }));
}

size_t crypt_rsa_public_exp(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                            size_t outSize) {
    if (pubKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pubKey' is NULL"), 0; }
    if (in == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL"), 0; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), 0; }
    return with_public_key(pubKey, out, outSize, [&](rsa_key* key, uint8_t* work, unsigned long* length) {
        return rsa_exptmod(in, inLen, work, length, PK_PUBLIC, key);
    });
}

size_t crypt_rsa_encrypt(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                         size_t outSize) {
    if (pubKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pubKey' is NULL"), 0; }
    if (in == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL"), 0; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), 0; }
    return with_public_key(pubKey, out, outSize, [&](rsa_key* key, uint8_t* work, unsigned long* length) {
        return oaep_encrypt(key, {in, inLen}, work, length);
    });
}

size_t crypt_rsa_decrypt(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out, size_t outSize) {
    if (privKey == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'privKey' is NULL"), 0; }
    if (in == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL"), 0; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), 0; }
    const Result result = through_work_area(out, outSize, [&](uint8_t* work, unsigned long* length) {
        return oaep_decrypt(borrowed(privKey), {in, inLen}, work, length);
    });
    if (result.status == CRYPT_INVALID_PACKET) { return raise(KOR_RESULT_CRYPT_ERROR, "Invalid OAEP packet"), 0; }
    return length_or_raise(result);
}
