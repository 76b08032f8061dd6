// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/gen.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr uint8_t kMaxKeyType = 3;
constexpr uint8_t kMaxKeyUse = 1;
constexpr size_t kMaxKeyMap = 100;

bool refuse_key_query(const AbecsCmdGen02K3CmdData& data) {
    return refuse_if(data.keyType > kMaxKeyType, "Invalid value for cmdData->keyType: %d", data.keyType)
           || refuse_if(data.keyUse > kMaxKeyUse, "Invalid value for cmdData->keyUse: %d", data.keyUse)
           || refuse_if(data.idxIni > kMaxIndex, "Invalid value for cmdData->idxIni: %d", data.idxIni)
           || refuse_if(data.idxEnd > kMaxIndex, "Invalid value for cmdData->idxEnd: %d", data.idxEnd)
           || refuse_if(data.idxEnd < data.idxIni, "cmdData->idxIni > cmdData->idxEnd");
}

}  // namespace

int32_t abecs_cmd_gen_02_k3(AbecsComm* pinpad, const AbecsCmdGen02K3CmdData* cmdData, char* responseData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_null(responseData, "'responseData' is NULL")) {
        return kRaised;
    }
    if (refuse_key_query(*cmdData)) { return kRaised; }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, cmdData->keyType, 1);
        abecs_packet_write_field_n(packet, cmdData->keyUse, 1);
        abecs_packet_write_field_n(packet, cmdData->idxIni, 2);
        abecs_packet_write_field_n(packet, cmdData->idxEnd, 2);
    };
    return call_gen(pinpad, {2, "K3"}, 1 + 1 + 2 + 2, write, [&](AbecsPacket* packet, size_t length) {
        if (length > kMaxKeyMap) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) GEN_OUTLEN is too big: %zu)", kGen.name, length);
        }
        abecs_packet_read_field_b(packet, responseData, length, length);
        responseData[length] = '\0';
    });
}
