// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_EXCHANGE_H
#define QUORVEL_ABECS_CMD_EXCHANGE_H

#include <cstdint>

#include "abecs/data/limits.h"
#include "abecs/data/spe_param.h"
#include "core/function_ref.h"
#include "quorvel/abecs/cmd/builder.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/rsp_parser.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/kor/result.h"

// The exchange of a request and its answer, the one engine under every command. A command is its checks, a request and
// a response; the engine makes and releases the temporaries, sends, reads, checks RSP_ID, reads RSP_STAT and, for a
// command that waits for the cardholder, keeps the link blocked until the final answer.
//
//     return call(pinpad, kGin,
//                 Request::fields([&](AbecsPacket* packet) { ... }),      writes what follows CMD_ID
//                 Response::fields([&](AbecsPacket* packet) { ... }));    reads what follows RSP_STAT, when it is 0
namespace abecs {

// What a command function returns when its raise returned: never a success, and final, so that nobody goes on polling.
inline constexpr int32_t kRaised = ABECS_RSP_STAT_ST_INTERR;

// How a command words the fault of an RSP_ID that is not its own.
enum class UnexpectedId : uint8_t { kUsual, kClosed, kTable };

struct Command {
    const char* id;         // CMD_ID, and the RSP_ID of the answer
    const char* name = id;  // what the link waits for and the messages call it
    UnexpectedId unexpectedId = UnexpectedId::kUsual;
};

// Writes the parameters of a request, one at a time.
class ParamWriter {
public:
    ParamWriter(AbecsCmdBuilder* builder, AbecsParam* param) : builder_(builder), param_(param) {}

    template <typename Write>
    void put(AbecsSpeId_E id, Write&& write) {
        abecs_param_set_id(param_, static_cast<uint16_t>(id));
        write(param_);
        abecs_cmd_builder_add_param(builder_, param_);
    }
    void number(SpeNumber id, uint64_t value) {
        put(id.id, [=](AbecsParam* param) { write_number(param, id, value); });
    }
    void bytes(AbecsSpeId_E id, const void* bytes, size_t size) {
        put(id, [=](AbecsParam* param) { abecs_param_write_field_b(param, bytes, size); });
    }

private:
    AbecsCmdBuilder* builder_;
    AbecsParam* param_;
};

// Hands out the parameters of a successful answer in order, then none.
class ParamReader {
public:
    ParamReader(AbecsRspParser* parser, AbecsParam* param) : parser_(parser), param_(param) {}

    [[nodiscard]] AbecsParam* next() { return abecs_rsp_parser_read_param(parser_, param_); }

private:
    AbecsRspParser* parser_;
    AbecsParam* param_;
};

using WriteFields = kor::FunctionRef<void(AbecsPacket*)>;
using WriteParams = kor::FunctionRef<void(ParamWriter&)>;
using ReadFields = kor::FunctionRef<void(AbecsPacket*)>;
using ReadParams = kor::FunctionRef<void(ParamReader&)>;

// One of: nothing after CMD_ID; fields (the writer writes the lengths too); parameters; a builder that the caller
// filled, which is left as it was so that it can be sent again. A request borrows the caller's lambda, so it is written
// where it is sent: one with a name of its own is not taken.
struct Request {
    WriteFields writeFields;
    WriteParams writeParams;
    AbecsCmdBuilder* builder = nullptr;

    static Request bare() { return {}; }
    static Request fields(WriteFields write) { return {.writeFields = write, .writeParams = {}, .builder = nullptr}; }
    static Request params(WriteParams write) { return {.writeFields = {}, .writeParams = write, .builder = nullptr}; }
    static Request built(AbecsCmdBuilder* builder) {
        return {.writeFields = {}, .writeParams = {}, .builder = builder};
    }
};

// One of: RSP_STAT alone; fields; parameters; parameters copied into a map, which is emptied before anything is read
// and holds nothing after an error.
struct Response {
    bool parsed = false;  // read through the response parser rather than field by field
    ReadFields readFields;
    ReadParams readParams;
    AbecsRspParamMap* map = nullptr;
    bool anyStatus = false;  // the fields are read whatever RSP_STAT says

    static Response status() { return {}; }
    static Response parsed_status() {
        Response response;
        response.parsed = true;
        return response;
    }
    static Response fields(ReadFields read) {
        Response response;
        response.readFields = read;
        return response;
    }
    static Response fields_of_any_status(ReadFields read) {
        Response response = fields(read);
        response.anyStatus = true;
        return response;
    }
    static Response params(ReadParams read) {
        Response response = parsed_status();
        response.readParams = read;
        return response;
    }
    static Response into(AbecsRspParamMap* map) {
        Response response = parsed_status();
        response.map = map;
        return response;
    }
};

// Sends the request, reads the answer and returns RSP_STAT.
[[nodiscard]] int32_t call(AbecsComm* pinpad, const Command& command, Request&& request, Response&& response);

// Sends the request of a command that waits for the cardholder and blocks the link on it. Returns 0.
int32_t send(AbecsComm* pinpad, const Command& command, Request&& request);

// The same for a command that hands out a result code: that of what was raised, or OK.
KorResult_E send_for_result(AbecsComm* pinpad, const Command& command, Request&& request);

// Reads the answer of a command sent before. Returns RSP_STAT and unblocks the link; or -1 when nothing came within the
// link's time-out and -2 after a notification, the link staying blocked.
[[nodiscard]] int32_t poll(AbecsComm* pinpad, const Command& command, Response&& response, char* notification);

}  // namespace abecs

#endif
