// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/secure.h"

#include <span>

#include "abecs/comm/comm.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/crypt/aes.h"

using namespace kor;

namespace abecs {

namespace {

constexpr size_t kCipherBlock = 16;
constexpr size_t kHeadSize = 2 + 2;  // DATALEN and DATACRC

// A length that is a multiple already gets a whole block more.
constexpr size_t padding_of(size_t plainLength) { return kCipherBlock - (kHeadSize + plainLength) % kCipherBlock; }
static_assert(padding_of(11) == 1 && padding_of(12) == 16);

// The first byte that does not fit is refused by itself.
void write_piece(AbecsPacket* sealed, std::span<const uint8_t> piece) {
    const std::span<const uint8_t> rest = fill(sealed, piece);
    if (!rest.empty()) { abecs_packet_write_byte(sealed, rest.front()); }
}

void write_content(AbecsPacket* sealed, AbecsPacket* plain) {
    const size_t length = abecs_packet_available_read(plain);
    abecs_packet_write_field_x(sealed, static_cast<uint32_t>(length), 2);
    abecs_packet_write_field_x(sealed, abecs_comm_crc16(plain, nullptr, nullptr), 2);
    const Unread data = unread_of(plain);
    write_piece(sealed, data.first);
    write_piece(sealed, data.second);
    for (size_t i = padding_of(length); i != 0; --i) { abecs_packet_write_byte(sealed, 0); }
}

// The unread bytes, which stand in one piece: a packet is written once and never round its end.
uint8_t* content_of(AbecsPacket* packet) {
    return kor_buffer_get_storage(packet->buffer) + kor_buffer_get_read_cursor_pos(packet->buffer);
}

void open_content(AbecsPacket* packet) {
    const uint32_t length = abecs_packet_read_field_x(packet, 2);
    const uint32_t crc = abecs_packet_read_field_x(packet, 2);
    if (abecs_packet_available_read(packet) < length) {
        return kor_exception_throw(KOR_RESULT_PROTOCOL_ERROR, "Encrypted packet is not complete");
    }
    const uint32_t begin = kor_buffer_get_read_cursor_pos(packet->buffer);
    const KorBufferState withoutPadding{.writeCursor = begin + length, .readCursor = begin, .lastRead = length == 0};
    kor_buffer_set_state(packet->buffer, &withoutPadding);
    if (abecs_comm_crc16(packet, nullptr, nullptr) != crc) {
        kor_exception_throw(KOR_RESULT_PROTOCOL_ERROR, "Invalid DATACRC");
    }
}

}  // namespace

AbecsPacket* secure_encrypt(AbecsComm* link, AbecsPacket* plain) {
    CryptAesCipher* cipher = nullptr;
    AbecsPacket* sealed = nullptr;
    bool complete = false;
    attempt([&] {
        cipher = crypt_aes_cipher_new(link->key.data(), link->key.size());
        sealed = abecs_packet_new();
        write_content(sealed, plain);
        const size_t length = abecs_packet_available_read(sealed);
        crypt_aes_cbc_encrypt(cipher, content_of(sealed), content_of(sealed), length, nullptr);
        complete = true;
    })
        .cleanup([&] {
            crypt_aes_cipher_delete(&cipher);
            if (!complete) { abecs_packet_delete(&sealed); }
        })
        .run();
    return sealed;
}

void secure_decrypt(AbecsComm* link, AbecsPacket* packet) {
    const size_t length = abecs_packet_available_read(packet);
    if (length % kCipherBlock != 0) { return raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed encrypted response"); }
    if (!link->keySet) { return; }
    CryptAesCipher* cipher = nullptr;
    attempt([&] {
        cipher = crypt_aes_cipher_new(link->key.data(), link->key.size());
        crypt_aes_cbc_decrypt(cipher, content_of(packet), content_of(packet), length, nullptr);
        open_content(packet);
    })
        .on_any([&] {
            KorException cause;
            kor_exception_get(&cause);
            raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed encrypted response (caused by %s)", cause.message);
        })
        .cleanup([&] { crypt_aes_cipher_delete(&cipher); })
        .run();
}

}  // namespace abecs
