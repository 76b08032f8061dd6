// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcd.h"

#include <cstdint>

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/cmd/gcd_sized.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGcd{.id = "GCD"};
constexpr int kMaxDigits = 32;

void read_value(ParamReader& params, char* out, size_t sizeOut) {
    while (AbecsParam* param = params.next()) {
        if (abecs_param_get_id(param) != ABECS_RSP_DATID_PP_VALUE) { continue; }
        const size_t size = abecs_param_available_read(param);
        if (size >= sizeOut) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "PP_VALUE is too long (max: %zu, read: %zu)", sizeOut - 1, size);
        }
        abecs_param_read_field_b(param, out, size, size);
        out[size] = '\0';
        return;
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "PP_VALUE not found on response");
}

}  // namespace

void abecs_cmd_gcd(AbecsComm* pinpad, uint16_t msgIdx, uint8_t minDig, uint8_t maxDig, uint8_t timeout) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_if(minDig > kMaxDigits, "Invalid value for minDig: %d (max: 32)", minDig)
        || refuse_if(maxDig > kMaxDigits, "Invalid value for maxDig: %d (max: 32)", maxDig)
        || refuse_if(minDig > maxDig, "minDig (%d) > maxDig (%d)", minDig, maxDig)) {
        return;
    }
    send(pinpad, kGcd, Request::params([&](ParamWriter& params) {
             params.number(ABECS_SPE_ID_MSGIDX, msgIdx);
             params.number(ABECS_SPE_ID_MINDIG, minDig);
             params.number(ABECS_SPE_ID_MAXDIG, maxDig);
             if (timeout != 0) { params.number(ABECS_SPE_ID_TIMEOUT, timeout); }
         }));
}

int32_t abecs_cmd_gcd_response(AbecsComm* pinpad, char* out, char* notification) {
    return abecs_cmd_gcd_response_sized(pinpad, out, SIZE_MAX, notification);
}

int32_t abecs_cmd_gcd_response_sized(AbecsComm* pinpad, char* out, size_t size, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")
        || refuse_if(size == 0, "'size' is zero")) {
        return kRaised;
    }
    return poll(pinpad, kGcd, Response::params([&](ParamReader& params) { read_value(params, out, size); }),
                notification);
}
