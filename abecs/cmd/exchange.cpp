// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/exchange.h"

#include <cstring>

#include "abecs/cmd/builder.h"
#include "abecs/comm/comm.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace abecs {

namespace {

constexpr size_t kHeadLength = kIdWidth + kStatWidth;
constexpr const char* kRefused = "ERR";
constexpr const char* kNotification = "NTM";

// What one call needs, released on every way out.
struct Temporaries {
    AbecsComm* link;
    AbecsPacket* packet = nullptr;
    AbecsParam* param = nullptr;
    AbecsCmdBuilder* builder = nullptr;
    AbecsRspParser* parser = nullptr;

    // What the request was made of; the packet is left for the answer.
    void release_request() {
        abecs_cmd_builder_delete(&builder);
        abecs_param_delete(&param);
        wipe(packet);
    }

    void release() {
        abecs_rsp_parser_delete(&parser);
        abecs_cmd_builder_delete(&builder);
        abecs_param_delete(&param);
        give_back(link, packet);
    }
};

void write_params(Temporaries& own, const Command& command, const WriteParams& write) {
    own.builder = abecs_cmd_builder_new();
    own.param = abecs_param_new();
    abecs_cmd_builder_set_cmd_id(own.builder, command.id);
    ParamWriter writer(own.builder, own.param);
    write(writer);
    abecs_cmd_builder_build(own.builder, own.packet);
}

void write_request(Temporaries& own, const Command& command, const Request& request) {
    own.packet = take_packet(own.link);
    if (request.writeParams) { return write_params(own, command, request.writeParams); }
    if (request.builder != nullptr) {
        abecs_cmd_builder_set_cmd_id(request.builder, command.id);
        abecs_cmd_builder_build(request.builder, own.packet);
        return;
    }
    abecs_packet_write_field_a(own.packet, command.id, kIdWidth, false);
    if (request.writeFields) { request.writeFields(own.packet); }
}

// Sends it and goes on with `then`, in one try block.
void send_request(AbecsComm* pinpad, Temporaries& own, const Command& command, const Request& request, Branch then,
                  Branch cleanup) {
    const BuilderState state = save_builder(request.builder);
    attempt([&] {
        write_request(own, command, request);
        abecs_comm_send_packet(pinpad, own.packet);
        then();
    })
        .cleanup([&] {
            restore_builder(request.builder, state);
            cleanup();
        })
        .run();
}

void check_id(const Command& command, const char* id) {
    if (kor_string_equals(id, command.id) || kor_string_equals(id, kRefused)) { return; }
    switch (command.unexpectedId) {
        case UnexpectedId::kClosed:
            return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid RSP_ID: %s", command.name, id);
        case UnexpectedId::kTable:
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_ID (expected %s, read: %s)", command.name, id);
        default:
            return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) Invalid RSP_ID: %s)", command.name, id);
    }
}

// The map adopts the copy; until it has, the copy is this function's to free. A zero stands behind the bytes, outside
// their size, so that a value read as a text ends.
void copy_into_map(AbecsParam* param, AbecsRspParamMap* map) {
    const size_t size = abecs_param_available_read(param);
    const uint16_t id = abecs_param_get_id(param);
    if (size == 0) {
        abecs_rsp_param_map_put(map, id, nullptr, true);
        return;
    }
    uint8_t* copy = nullptr;
    attempt([&] {
        copy = static_cast<uint8_t*>(kor_heap_alloc(size + 1, 0));
        copy[size] = 0;
        abecs_param_read_field_b(param, copy, size, size);
        const AbecsRspParamValue value{.size = static_cast<uint32_t>(size), .data = copy, .owned = true};
        abecs_rsp_param_map_put(map, id, &value, true);
        copy = nullptr;
    })
        .cleanup([&] {
            if (copy == nullptr) { return; }
            explicit_bzero(copy, size);
            kor_heap_free(copy);
        })
        .run();
}

int32_t read_parsed_answer(Temporaries& own, const Command& command, const Response& response, bool blocking,
                           char* notification) {
    own.parser = abecs_rsp_parser_new();
    own.param = abecs_param_new();
    abecs_rsp_parser_set_packet(own.parser, own.packet);
    const char* id = abecs_rsp_parser_get_id(own.parser);
    const int32_t stat = abecs_rsp_parser_get_stat(own.parser);
    if (blocking && kor_string_equals(id, kNotification)) {
        abecs_rsp_parser_read_notification(own.parser, notification);
        return ABECS_RSP_STAT_ST_NOTIFICATION;
    }
    check_id(command, id);
    if (stat != ABECS_RSP_STAT_ST_OK) { return stat; }
    ParamReader reader(own.parser, own.param);
    if (response.readParams) { response.readParams(reader); }
    if (response.map != nullptr) {
        while (AbecsParam* param = reader.next()) { copy_into_map(param, response.map); }
    }
    return stat;
}

int32_t read_field_answer(Temporaries& own, const Command& command, const Response& response, bool blocking,
                          char* notification) {
    if (abecs_packet_available_read(own.packet) < kHeadLength) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Unrecognized response"), kRaised;
    }
    char id[kIdWidth + 1];
    abecs_packet_read_field_a(own.packet, id, sizeof id, kIdWidth, false);
    if (blocking && kor_string_equals(id, kNotification)) {
        abecs_packet_read_notification(own.packet, notification);
        return ABECS_RSP_STAT_ST_NOTIFICATION;
    }
    check_id(command, id);
    const int32_t stat = abecs_packet_read_rsp_stat(own.packet);
    if (response.readFields && (stat == ABECS_RSP_STAT_ST_OK || response.anyStatus)) {
        response.readFields(own.packet);
    }
    return stat;
}

int32_t read_answer(AbecsComm* pinpad, Temporaries& own, const Command& command, const Response& response,
                    bool blocking, char* notification) {
    if (own.packet == nullptr) { own.packet = take_packet(own.link); }
    abecs_comm_read_packet(pinpad, own.packet);
    auto* read = response.parsed ? read_parsed_answer : read_field_answer;
    return read(own, command, response, blocking, notification);
}

void release_after_answer(Temporaries& own, const Response& response) {
    if (response.map != nullptr && kor_exception_get_error() != KOR_RESULT_OK) { kor_map_clear(response.map); }
    own.release();
}

int32_t send_and_lock(AbecsComm* pinpad, const Command& command, const Request& request) {
    Temporaries own{pinpad};
    int32_t result = kRaised;
    const auto block = [&] {
        abecs_comm_lock(pinpad, command.name);
        result = 0;
    };
    send_request(pinpad, own, command, request, block, [&] { own.release(); });
    return result;
}

}  // namespace

int32_t call(AbecsComm* pinpad, const Command& command, Request&& request, Response&& response) {
    Temporaries own{pinpad};
    int32_t stat = kRaised;
    if (response.map != nullptr) { kor_map_clear(response.map); }
    const bool outermost = begin_call(pinpad);
    const auto read = [&] {
        own.release_request();
        stat = read_answer(pinpad, own, command, response, false, nullptr);
    };
    send_request(pinpad, own, command, request, read, [&] {
        end_call(pinpad, outermost);
        release_after_answer(own, response);
    });
    return stat;
}

int32_t send(AbecsComm* pinpad, const Command& command, Request&& request) {
    return send_and_lock(pinpad, command, request);
}

// The code is taken while the error is pending: nothing is left of it once its raise has returned.
KorResult_E send_for_result(AbecsComm* pinpad, const Command& command, Request&& request) {
    KorResult_E code = KOR_RESULT_OK;
    attempt([&] {
        send_and_lock(pinpad, command, request);
    }).cleanup([&] {
          code = KorResult_E{kor_exception_get_error()};
      }).run();
    return code;
}

int32_t poll(AbecsComm* pinpad, const Command& command, Response&& response, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    if (!kor_string_equals(abecs_comm_get_blk_wait_id(pinpad), command.name)) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "%s was not sent yet", command.name), kRaised;
    }
    Temporaries own{pinpad};
    int32_t stat = kRaised;
    if (response.map != nullptr) { kor_map_clear(response.map); }
    attempt([&] {
        stat = read_answer(pinpad, own, command, response, true, notification);
        if (stat != ABECS_RSP_STAT_ST_NOTIFICATION) { abecs_comm_release(pinpad); }
    })
        .on(KOR_RESULT_TIMEOUT_ERROR, [&] { stat = ABECS_RSP_STAT_ST_PROCESSING; })
        .cleanup([&] { release_after_answer(own, response); })
        .run();
    return stat;
}

}  // namespace abecs
