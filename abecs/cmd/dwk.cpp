// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dwk.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/comm/comm.h"
#include "abecs/data/codec.h"
#include "abecs/data/mk.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/crypt/rsa.h"
#include "quorvel/kor/system.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kDwk{.id = "DWK"};
static_assert(kKeyWidth == 2 * sizeof(AbecsWkPan::key));

enum class Variant : uint8_t { kMasterKey = 1, kRsa = 2 };
constexpr size_t kMasterKeyLength = 1 + 1 + 2 + kKeyWidth;
static_assert(kMasterKeyLength == 36);

constexpr size_t kModulusLength = 128;
constexpr uint32_t kPublicExponent = 65537;
constexpr size_t kExponentWidth = 6;
constexpr size_t kRsaLength = 1 + 2 * kModulusLength + kExponentWidth;
static_assert(kRsaLength == 263);

// What the cryptogram of the RSA variant holds: the key between filling that means nothing to the host.
constexpr char kHeader = 'T';
constexpr uint64_t kLayoutVersion = 1;
constexpr size_t kFillingBefore = 9;
constexpr size_t kFillingBehind = 84;
constexpr char kEnd = 'X';
static_assert(1 + 1 + kFillingBefore + kKeyWidth + kFillingBehind + 1 == kModulusLength);

void write_head(AbecsPacket* packet, size_t length, Variant variant) {
    abecs_packet_write_field_n(packet, length, 3);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(variant), 1);
}

void write_enciphered_key(AbecsPacket* packet, const AbecsMk& mk, const uint8_t (&enciphered)[16]) {
    write_head(packet, kMasterKeyLength, Variant::kMasterKey);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(mk.type), 1);
    abecs_packet_write_field_n(packet, mk.idx, 2);
    abecs_packet_write_field_h_raw(packet, enciphered, sizeof enciphered, kKeyWidth);
}

void write_public_key(AbecsPacket* packet, const CryptRsaPublicKey& key) {
    write_head(packet, kRsaLength, Variant::kRsa);
    abecs_packet_write_field_h_raw(packet, key.modulus, key.modulusSize, 2 * kModulusLength);
    abecs_packet_write_field_h_raw(packet, key.exponent, key.exponentSize, kExponentWidth);
}

void draw(uint8_t (&key)[16]) {
    for (uint8_t& byte : key) { byte = static_cast<uint8_t>(kor_system_random(0, UINT8_MAX)); }
}

void read_cryptogram(AbecsPacket* packet, uint8_t (&out)[kModulusLength]) {
    const auto length = static_cast<size_t>(abecs_packet_read_field_n(packet, 3));
    if (length != 2 * kModulusLength) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_LEN: %zu (expected: 256)", length);
    }
    read_field_h_bytes(packet, out, sizeof out, 2 * kModulusLength);
}

void parse_block(KorBuffer* block, AbecsWkPan& out) {
    char header[2];
    abecs_data_read_field_a(block, header, sizeof header, 1, false);
    if (header[0] != kHeader) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid header: %02X (expected: 0x54)", kDwk.name,
                     codec::shown(header[0]));
    }
    const uint64_t version = abecs_data_read_field_n(block, 1);
    if (version != kLayoutVersion) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid layout version: %d (expected: 1)", kDwk.name,
                     static_cast<int>(version));
    }
    kor_buffer_read(block, nullptr, kFillingBefore);
    read_field_h_bytes(block, out.key, sizeof out.key, kKeyWidth);
    kor_buffer_read(block, nullptr, kFillingBehind);
    const uint8_t end = kor_buffer_read_byte(block);
    if (end != kEnd) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid block end (expected: 'X', read: '%c')", kDwk.name, end);
    }
}

// Everything secret of the RSA variant.
struct RsaVariant {
    CryptRsaKey* rsa = nullptr;
    uint8_t block[kModulusLength]{};
    KorBuffer* buffer = nullptr;
    AbecsWkPan key{ABECS_WK_PAN_TYPE_TDES_RSA, {}};

    void read(AbecsPacket* packet) {
        read_cryptogram(packet, block);
        crypt_rsa_private_exp(rsa, block, sizeof block, block, sizeof block);
        kor_buffer_write(buffer, block, sizeof block);
        parse_block(buffer, key);
    }

    void release() {
        explicit_bzero(block, sizeof block);
        explicit_bzero(&key, sizeof key);
        kor_buffer_delete(&buffer);
        crypt_rsa_key_delete(&rsa);
    }
};

void hand_out(AbecsComm* pinpad, const AbecsWkPan& key, AbecsWkPan* wkPanOut, bool setOnLink) {
    abecs_comm_set_wk_pan(pinpad, setOnLink ? &key : nullptr);
    if (wkPanOut != nullptr) { *wkPanOut = key; }
}

}  // namespace

int32_t abecs_cmd_dwk1(AbecsComm* pinpad, const AbecsMk* mk, AbecsWkPan* wkPanOut, bool setOnLink) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(mk, "'mk' is NULL")
        || refuse_outside(mk->type, ABECS_MK_TYPE_DES, ABECS_MK_TYPE_TDES, "AbecsMkType_E")
        || refuse_if(mk->idx > kMaxIndex, "Invalid master key index: %d (max: 99)", mk->idx)) {
        return kRaised;
    }
    AbecsWkPan key{mk->type == ABECS_MK_TYPE_DES ? ABECS_WK_PAN_TYPE_DES : ABECS_WK_PAN_TYPE_TDES, {}};
    uint8_t enciphered[sizeof key.key];
    int32_t stat = kRaised;
    attempt([&] {
        draw(key.key);
        std::memcpy(enciphered, key.key, sizeof enciphered);
        if (!encipher(*mk, enciphered, sizeof enciphered)) { return; }
        stat = call(pinpad, kDwk,
                    Request::fields([&](AbecsPacket* packet) { write_enciphered_key(packet, *mk, enciphered); }),
                    Response::status());
        if (stat != ABECS_RSP_STAT_ST_OK) { return; }
        hand_out(pinpad, key, wkPanOut, setOnLink);
        if (!setOnLink) { expect_protected_pan(pinpad); }
    })
        .cleanup([&] {
            explicit_bzero(&key, sizeof key);
            explicit_bzero(enciphered, sizeof enciphered);
        })
        .run();
    return stat;
}

int32_t abecs_cmd_dwk2(AbecsComm* pinpad, AbecsWkPan* wkPanOut, bool setOnLink) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    RsaVariant secrets;
    CryptRsaPublicKey publicKey{};
    int32_t stat = kRaised;
    attempt([&] {
        secrets.rsa = crypt_rsa_key_new(static_cast<int32_t>(kModulusLength), kPublicExponent);
        secrets.buffer = kor_buffer_new(kModulusLength);
        crypt_rsa_get_public_key(secrets.rsa, &publicKey);
        stat = call(pinpad, kDwk, Request::fields([&](AbecsPacket* packet) { write_public_key(packet, publicKey); }),
                    Response::fields([&](AbecsPacket* packet) { secrets.read(packet); }));
        if (stat == ABECS_RSP_STAT_ST_OK) { hand_out(pinpad, secrets.key, wkPanOut, setOnLink); }
    }).cleanup([&] {
          secrets.release();
      }).run();
    return stat;
}
