// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/packet.h"

#include <algorithm>
#include <cstring>

#include "abecs/data/codec.h"
#include "abecs/data/flag.h"
#include "abecs/data/param.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/abecs/rsp_stat.h"

using namespace abecs;
using namespace kor;

namespace {

// A notification's text and its terminator.
constexpr size_t kNotificationSize = 33;

}  // namespace

Unread abecs::unread_of(const AbecsPacket* packet) {
    const KorBuffer& buffer = *packet->buffer;
    const std::span storage(buffer.storage, buffer.capacity);
    const size_t length = readable(buffer);
    const size_t untilEnd = std::min(length, storage.size() - buffer.readCursor);
    return {storage.subspan(buffer.readCursor, untilEnd), storage.first(length - untilEnd)};
}

void abecs::consume(AbecsPacket* packet) {
    packet->buffer->readCursor = packet->buffer->writeCursor;
    packet->buffer->lastRead = true;
}

void abecs::wipe(AbecsPacket* packet) {
    explicit_bzero(packet->bytes.storage.data(), packet->bytes.storage.size());
    kor_buffer_clear(packet->buffer);
}

std::span<const uint8_t> abecs::fill(AbecsPacket* packet, std::span<const uint8_t> bytes) {
    const size_t count = std::min(bytes.size(), writable(*packet->buffer));
    kor_buffer_write(packet->buffer, bytes.data(), count);
    return bytes.subspan(count);
}

AbecsPacket* abecs_packet_new() { return new_owner<AbecsPacket>(); }

void abecs_packet_delete(AbecsPacket** packet) { delete_owner(packet); }

void abecs_packet_clear(AbecsPacket* packet) { apply<kor_buffer_clear>(bytes_of(packet)); }

size_t abecs_packet_available_read(const AbecsPacket* packet) {
    return apply<kor_buffer_available_read>(bytes_of(packet));
}

void abecs_packet_write_byte(AbecsPacket* packet, uint8_t byte) {
    return apply<kor_buffer_write_byte>(bytes_of(packet), byte);
}

uint8_t abecs_packet_read_byte(AbecsPacket* packet) { return apply<kor_buffer_read_byte>(bytes_of(packet)); }

void abecs_packet_write_field_n(AbecsPacket* packet, uint64_t i, size_t fieldLen) {
    return apply<abecs_data_write_field_n>(bytes_of(packet), i, fieldLen);
}

uint64_t abecs_packet_read_field_n(AbecsPacket* packet, size_t fieldLen) {
    return apply<abecs_data_read_field_n>(bytes_of(packet), fieldLen);
}

void abecs_packet_write_field_a(AbecsPacket* packet, const char* data, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_write_field_a>(bytes_of(packet), data, fieldLen, is_set(allowCr));
}

void abecs_packet_write_field_a_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen,
                                      bool allowCr) {
    return apply<abecs_data_write_field_a_cdata>(bytes_of(packet), data, dataLen, fieldLen, is_set(allowCr));
}

char* abecs_packet_read_field_a(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_read_field_a>(bytes_of(packet), to, sizeTo, fieldLen, is_set(allowCr));
}

void abecs_packet_write_field_s(AbecsPacket* packet, const char* data, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_write_field_s>(bytes_of(packet), data, fieldLen, is_set(allowCr));
}

void abecs_packet_write_field_s_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen,
                                      bool allowCr) {
    return apply<abecs_data_write_field_s_cdata>(bytes_of(packet), data, dataLen, fieldLen, is_set(allowCr));
}

char* abecs_packet_read_field_s(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_read_field_s>(bytes_of(packet), to, sizeTo, fieldLen, is_set(allowCr));
}

void abecs_packet_write_field_h(AbecsPacket* packet, const char* data, size_t fieldLen) {
    return apply<abecs_data_write_field_h>(bytes_of(packet), data, fieldLen);
}

void abecs_packet_write_field_h_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen) {
    return apply<abecs_data_write_field_h_cdata>(bytes_of(packet), data, dataLen, fieldLen);
}

char* abecs_packet_read_field_h(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen) {
    return apply<abecs_data_read_field_h>(bytes_of(packet), to, sizeTo, fieldLen);
}

void abecs_packet_write_field_h_raw(AbecsPacket* packet, const uint8_t* data, size_t dataLen, size_t fieldLen) {
    return apply<abecs_data_write_field_h_raw>(bytes_of(packet), data, dataLen, fieldLen);
}

size_t abecs_packet_read_field_h_raw(AbecsPacket* packet, uint8_t* to, size_t sizeTo, size_t fieldLen) {
    return apply<abecs_data_read_field_h_raw>(bytes_of(packet), to, sizeTo, fieldLen);
}

void abecs_packet_write_field_x(AbecsPacket* packet, uint32_t data, size_t fieldLen) {
    return apply<abecs_data_write_field_x>(bytes_of(packet), data, fieldLen);
}

uint32_t abecs_packet_read_field_x(AbecsPacket* packet, size_t fieldLen) {
    return apply<abecs_data_read_field_x>(bytes_of(packet), fieldLen);
}

void abecs_packet_write_field_b(AbecsPacket* packet, const void* data, size_t dataLen) {
    return apply<abecs_data_write_field_b>(bytes_of(packet), data, dataLen);
}

size_t abecs_packet_read_field_b(AbecsPacket* packet, void* to, size_t sizeTo, size_t dataLen) {
    return apply<abecs_data_read_field_b>(bytes_of(packet), to, sizeTo, dataLen);
}

// Not the zero result of the others: it would read as success.
int32_t abecs_packet_read_rsp_stat(AbecsPacket* packet) {
    KorBuffer* bytes = bytes_of(packet);
    return bytes != nullptr ? abecs_data_read_rsp_stat(bytes) : ABECS_RSP_STAT_ST_INTERR;
}

void abecs_packet_write_param(AbecsPacket* packet, AbecsParam* param) {
    if (bytes_of(packet) == nullptr || bytes_of(param) == nullptr) { return; }
    append_param(packet->buffer, param);
}

AbecsParam* abecs_packet_read_param(AbecsPacket* packet, AbecsParam* out) {
    if (bytes_of(packet) == nullptr) { return nullptr; }
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    kor_buffer_clear(out->data);
    const auto id = codec::read_x(packet->buffer, 2);
    if (!id) { return nullptr; }
    out->id = static_cast<uint16_t>(*id);
    const auto length = codec::read_x(packet->buffer, 2);
    if (!length) { return nullptr; }
    const size_t available = kor_buffer_available_read(packet->buffer);
    if (available < *length) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed parameter (expected data length: %hu, available: %hu)",
                     static_cast<unsigned short>(*length), static_cast<unsigned short>(available)),
               nullptr;
    }
    return move_bytes(packet->buffer, out->data, *length) ? out : nullptr;
}

char* abecs_packet_read_notification(AbecsPacket* packet, char* text) {
    if (bytes_of(packet) == nullptr) { return text; }
    const auto stat = codec::read_rsp_stat(packet->buffer);
    if (!stat) { return text; }
    if (*stat != ABECS_RSP_STAT_ST_OK) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "NTM with invalid RSP_STAT: %s",
                     abecs_rsp_stat_to_string(AbecsRspStat_E{*stat})),
               text;
    }
    const auto length = codec::read_n(packet->buffer, 3);
    if (!length) { return text; }
    return abecs_data_read_field_s(packet->buffer, text, kNotificationSize, static_cast<size_t>(*length), false);
}

KorBufferState* abecs_packet_save_state(const AbecsPacket* packet, KorBufferState* out) {
    if (bytes_of(packet) == nullptr) { return nullptr; }
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    return kor_buffer_save_state(packet->buffer, out);
}

void abecs_packet_set_state(AbecsPacket* packet, const KorBufferState* state) {
    if (bytes_of(packet) == nullptr) { return; }
    if (refuse_null(state, "'state' is NULL")) { return; }
    kor_buffer_set_state(packet->buffer, state);
}
