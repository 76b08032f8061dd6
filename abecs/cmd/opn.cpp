// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/opn.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/data/flag.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/crypt/rsa.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kOpn{.id = "OPN", .unexpectedId = UnexpectedId::kClosed};
constexpr size_t kModulusLength = 256;
constexpr uint32_t kPublicExponent = 65537;
constexpr size_t kExponentWidth = 6;
constexpr size_t kSessionKeyLength = 16;
constexpr size_t kRequestLength = 1 + 3 + 2 * kModulusLength + 1 + kExponentWidth;
constexpr size_t kResponseLength = 3 + 2 * kModulusLength;
static_assert(kRequestLength == 523 && kResponseLength == 515);

using Block = uint8_t[kModulusLength];

void write_public_key(AbecsPacket* packet, const CryptRsaPublicKey& key) {
    abecs_packet_write_field_n(packet, kRequestLength, 3);
    abecs_packet_write_field_n(packet, 0, 1);  // operation mode
    abecs_packet_write_field_n(packet, key.modulusSize, 3);
    abecs_packet_write_field_h_raw(packet, key.modulus, key.modulusSize, 2 * kModulusLength);
    abecs_packet_write_field_n(packet, key.exponentSize, 1);
    abecs_packet_write_field_h_raw(packet, key.exponent, key.exponentSize, kExponentWidth);
}

void read_cryptogram(AbecsPacket* packet, Block& out) {
    const uint64_t length = abecs_packet_read_field_n(packet, 3);
    if (length != kResponseLength) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid RSP_LEN1: %d", kOpn.name, static_cast<int>(length));
    }
    const uint64_t cryptogramLength = abecs_packet_read_field_n(packet, 3);
    if (cryptogramLength != kModulusLength) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid OPN_CRKSLEN: %d", kOpn.name,
                     static_cast<int>(cryptogramLength));
    }
    read_field_h_bytes(packet, out, sizeof out, 2 * kModulusLength);
}

// The session key at the end of a block of type 2: 00 02, filling without zeros, 00, key.
const uint8_t* unpad(const Block& block) {
    if (block[0] != 0x00 || block[1] != 0x02) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid PCKS#1 block header", kOpn.name), nullptr;
    }
    const uint8_t* end = block + sizeof block;
    const auto* zero = static_cast<const uint8_t*>(std::memchr(block + 2, 0, sizeof block - 2));
    const uint8_t* key = zero != nullptr ? zero + 1 : end;
    const auto length = static_cast<size_t>(end - key);
    if (length != kSessionKeyLength) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid Ksec length (expected: %d, read: %d)", kOpn.name,
                     static_cast<int>(kSessionKeyLength), static_cast<int>(length)),
               nullptr;
    }
    return key;
}

// The key is installed last, so an answer that fails leaves the link as it was.
void take_session_key(AbecsComm* pinpad, AbecsPacket* packet, const CryptRsaKey* key, Block& block) {
    read_cryptogram(packet, block);
    crypt_rsa_private_exp(key, block, sizeof block, block, sizeof block);
    abecs_comm_set_key(pinpad, unpad(block));
}

int32_t open_secure(AbecsComm* pinpad) {
    CryptRsaKey* key = nullptr;
    CryptRsaPublicKey publicKey{};
    Block block;
    bool received = false;
    int32_t stat = kRaised;
    attempt([&] {
        key = crypt_rsa_key_new(static_cast<int32_t>(kModulusLength), kPublicExponent);
        crypt_rsa_get_public_key(key, &publicKey);
        stat = call(pinpad, kOpn, Request::fields([&](AbecsPacket* packet) { write_public_key(packet, publicKey); }),
                    Response::fields_of_any_status([&](AbecsPacket* packet) {
                        if (abecs_packet_available_read(packet) == 0) { return; }
                        take_session_key(pinpad, packet, key, block);
                        received = true;
                    }));
    })
        .cleanup([&] {
            explicit_bzero(block, sizeof block);
            crypt_rsa_key_delete(&key);
        })
        .run();
    return stat == ABECS_RSP_STAT_ST_OK && !received ? ABECS_RSP_STAT_ST_INVCALL : stat;
}

}  // namespace

int32_t abecs_cmd_opn(AbecsComm* pinpad, bool secure) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    return is_set(secure) ? open_secure(pinpad) : call(pinpad, kOpn, Request::bare(), Response::status());
}
