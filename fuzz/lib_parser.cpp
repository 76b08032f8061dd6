// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "fuzz/link.h"
#include "quorvel/abecs/packet.h"

using namespace quorvel::fuzz;

// The parser of responses, and the packet's own notification, on the same bytes.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static AbecsPacket* packet = abecs_packet_new();
    static AbecsParam* param = abecs_param_new();
    static AbecsRspParser* parser = abecs_rsp_parser_new();
    size = std::min<size_t>(size, 2000);
    for (const bool notified : {false, true}) {
        abecs_packet_clear(packet);
        abecs_packet_write_field_b(packet, data, size);
        char text[33] = "";
        size_t read = 0;
        raised_by(
            [&] {
                if (notified) {
                    abecs_packet_read_rsp_stat(packet);
                    abecs_packet_read_notification(packet, text);
                    return;
                }
                abecs_rsp_parser_set_packet(parser, packet);
                while (abecs_rsp_parser_read_param(parser, param) != nullptr) {
                    read += 4 + abecs_param_available_read(param);
                }
                abecs_rsp_parser_read_notification(parser, text);
            },
            [] {});
        require(read <= size, "no more than there was");
        require(std::find(std::begin(text), std::end(text), 0) != std::end(text), "the text ends");
    }
    return 0;
}
