// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcd.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"

using kor::raise;

namespace {

constexpr abecs::Command kGcd{.id = "GCD"};
constexpr int kMaxDigits = 32;

void write_number(abecs::ParamWriter& params, uint16_t id, uint32_t value, size_t width) {
    params.put(id, [&](AbecsParam* param) { abecs_param_write_field_x(param, value, width); });
}

void read_value(abecs::ParamReader& params, char* out) {
    while (AbecsParam* param = params.next()) {
        if (abecs_param_get_id(param) != ABECS_RSP_DATID_PP_VALUE) { continue; }
        const size_t size = abecs_param_available_read(param);
        abecs_param_read_field_b(param, out, size, size);
        out[size] = '\0';
        return;
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "PP_VALUE not found on response");
}

}  // namespace

void abecs_cmd_gcd(AbecsComm* pinpad, uint16_t msgIdx, uint8_t minDig, uint8_t maxDig, uint8_t timeout) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"); }
    if (minDig > kMaxDigits) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid value for minDig: %d (max: 32)", minDig);
    }
    if (maxDig > kMaxDigits) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid value for maxDig: %d (max: 32)", maxDig);
    }
    if (minDig > maxDig) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "minDig (%d) > maxDig (%d)", minDig, maxDig); }
    send(pinpad, kGcd, Request::params([&](ParamWriter& params) {
             write_number(params, ABECS_SPE_ID_MSGIDX, msgIdx, 2);
             write_number(params, ABECS_SPE_ID_MINDIG, minDig, 1);
             write_number(params, ABECS_SPE_ID_MAXDIG, maxDig, 1);
             if (timeout != 0) { write_number(params, ABECS_SPE_ID_TIMEOUT, timeout, 1); }
         }));
}

int32_t abecs_cmd_gcd_response(AbecsComm* pinpad, char* out, char* notification) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), kRaised; }
    return poll(pinpad, kGcd, Response::params([&](ParamReader& params) { read_value(params, out); }), notification);
}
