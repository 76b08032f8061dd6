// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_parser.h"

#include <string_view>

#include "abecs/data/codec.h"
#include "abecs/data/limits.h"
#include "abecs/data/packet.h"
#include "abecs/data/param.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/kor/heap.h"

using namespace abecs;
using namespace kor;
using namespace std::string_view_literals;

struct AbecsRspParser {
    AbecsPacket* packet;  // the caller's; null until one has been parsed
    char id[4];
    int32_t stat;
    uint16_t blk1Left;
    uint16_t blk2Left;
};

namespace {

AbecsRspParser* checked(AbecsRspParser* parser) {
    if (parser == nullptr) { raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'parser' is NULL"); }
    return parser;
}

bool malformed() { return raise(KOR_RESULT_IO_ERROR, "Invalid packet (malformed)"), false; }

bool read_block_length(KorBuffer* bytes, uint16_t& out) {
    const auto length = codec::read_n(bytes, kLengthWidth);
    out = static_cast<uint16_t>(length.value_or(0));
    return length.has_value();
}

// The second block has to be the packet's end. Looked at ahead of the first one, which is read again afterwards.
bool look_at_block_2(AbecsRspParser& parser, KorBuffer* bytes) {
    KorBufferState block1;
    kor_buffer_save_state(bytes, &block1);
    kor_buffer_read(bytes, nullptr, parser.blk1Left);
    if (!read_block_length(bytes, parser.blk2Left)) { return false; }
    const size_t remaining = kor_buffer_available_read(bytes);
    if (remaining < parser.blk2Left) { return malformed(); }
    if (remaining > parser.blk2Left) { return raise(KOR_RESULT_IO_ERROR, "Invalid packet (unsupported block)"), false; }
    kor_buffer_set_state(bytes, &block1);
    return true;
}

bool parse_blocks(AbecsRspParser& parser, KorBuffer* bytes, int32_t stat) {
    if (stat != ABECS_RSP_STAT_ST_OK || kor_buffer_available_read(bytes) == 0) { return true; }
    if (!read_block_length(bytes, parser.blk1Left)) { return false; }
    const size_t remaining = kor_buffer_available_read(bytes);
    if (remaining < parser.blk1Left) { return malformed(); }
    return remaining == parser.blk1Left || look_at_block_2(parser, bytes);
}

bool check_notification(const AbecsRspParser& parser, int32_t stat) {
    if (stat != ABECS_RSP_STAT_ST_OK) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "NTM with invalid RSP_STAT: %s",
                     abecs_rsp_stat_to_string(AbecsRspStat_E{stat})),
               false;
    }
    if (parser.blk1Left > kMessageWidth || parser.blk2Left != 0) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed notification"), false;
    }
    return true;
}

// Null at the end of the block and after a raise, so that a caller's loop ends in both cases.
AbecsParam* read_param(AbecsRspParser& parser, uint16_t& left, AbecsParam* out, const char* misfit) {
    if (left == 0) { return nullptr; }
    if (left < kParamHead) { return raise(KOR_RESULT_IO_ERROR, "%s", misfit), nullptr; }
    if (abecs_packet_read_param(parser.packet, out) == nullptr) { return nullptr; }
    const size_t size = kor_buffer_available_read(out->data) + kParamHead;
    if (size > left) { return raise(KOR_RESULT_IO_ERROR, "%s", misfit), nullptr; }
    left = static_cast<uint16_t>(left - size);
    return out;
}

}  // namespace

AbecsRspParser* abecs_rsp_parser_new() {
    auto* parser = static_cast<AbecsRspParser*>(kor_heap_alloc(sizeof(AbecsRspParser), 0));
    if (parser != nullptr) { *parser = {}; }
    return parser;
}

void abecs_rsp_parser_delete(AbecsRspParser** parser) {
    if (parser == nullptr) { return; }
    kor_heap_free(*parser);
    *parser = nullptr;
}

void abecs_rsp_parser_set_packet(AbecsRspParser* parser, AbecsPacket* responsePacket) {
    if (checked(parser) == nullptr) { return; }
    if (refuse_null(responsePacket, "'responsePacket' is NULL")) { return; }
    // Until all is known to be good, a status that no caller takes for success and no packet to read from.
    *parser = {};
    parser->stat = ABECS_RSP_STAT_ST_INTERR;
    KorBuffer* bytes = responsePacket->buffer;
    if (kor_buffer_available_read(bytes) < kIdWidth + kStatWidth) {
        return raise(KOR_RESULT_IO_ERROR, "Invalid packet (not enough data)");
    }
    if (!codec::read_a(bytes, parser->id, sizeof parser->id, kIdWidth)) { return; }
    const auto stat = codec::read_rsp_stat(bytes);
    if (!stat || !parse_blocks(*parser, bytes, *stat)) { return; }
    const bool notification = parser->id == "NTM"sv;
    if (notification && !check_notification(*parser, *stat)) { return; }
    parser->stat = notification ? ABECS_RSP_STAT_ST_NOTIFICATION : *stat;
    parser->packet = responsePacket;
}

const char* abecs_rsp_parser_get_id(const AbecsRspParser* parser) {
    if (refuse_null(parser, "'parser' is NULL")) { return ""; }
    return parser->id;
}

int32_t abecs_rsp_parser_get_stat(const AbecsRspParser* parser) {
    if (refuse_null(parser, "'parser' is NULL")) { return ABECS_RSP_STAT_ST_INTERR; }
    return parser->stat;
}

AbecsParam* abecs_rsp_parser_read_param(AbecsRspParser* parser, AbecsParam* out) {
    if (checked(parser) == nullptr) { return nullptr; }
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    if (parser->packet == nullptr) { return nullptr; }
    if (parser->blk1Left != 0) {
        return read_param(*parser, parser->blk1Left, out, "Malformed packet (remaining bytes on BLK1 cannot be used)");
    }
    // A status other than 0 has no blocks: what follows it is not a length.
    const bool hasBlocks = parser->stat <= ABECS_RSP_STAT_ST_OK;
    uint16_t dropped = 0;
    if (hasBlocks && abecs_packet_available_read(parser->packet) > parser->blk2Left
        && !read_block_length(parser->packet->buffer, dropped)) {
        return nullptr;
    }
    return read_param(*parser, parser->blk2Left, out, "Malformed packet (remaining bytes on BLK2 cannot be used)");
}

char* abecs_rsp_parser_read_notification(AbecsRspParser* parser, char* text) {
    if (checked(parser) == nullptr) { return text; }
    if (parser->stat != ABECS_RSP_STAT_ST_NOTIFICATION) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "Response is not a notification"), text;
    }
    abecs_packet_read_field_s(parser->packet, text, kMessageWidth + 1, parser->blk1Left, false);
    parser->blk1Left = 0;
    return text;
}
