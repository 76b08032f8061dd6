// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cex.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_text.h"
#include "abecs/data/codec.h"
#include "abecs/data/pp_event.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kCex{.id = "CEX"};
constexpr size_t kOptLength = width_of(ABECS_SPE_ID_CEXOPT);
constexpr size_t kMaskWidth = width_of(ABECS_SPE_ID_PANMASK) / 2;
constexpr auto kNoEvent = static_cast<AbecsPpEvent_E>(-1);

void write_events(ParamWriter& params, const char* cexOpt, const uint8_t* timeout, const uint8_t* panMask) {
    params.put(ABECS_SPE_ID_CEXOPT,
               [&](AbecsParam* param) { abecs_param_write_field_a(param, cexOpt, kOptLength, false); });
    if (timeout != nullptr) { params.number(ABECS_SPE_ID_TIMEOUT, *timeout); }
    if (panMask != nullptr) {
        params.put(ABECS_SPE_ID_PANMASK, [&](AbecsParam* param) {
            abecs_param_write_field_n(param, panMask[0], kMaskWidth);
            abecs_param_write_field_n(param, panMask[1], kMaskWidth);
        });
    }
}

// As strtol() does it, which needs a NUL: the map may hold an application's own bytes, with nothing behind them.
int32_t to_number(const AbecsRspParamValue& value) {
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
    std::string_view text;
    if (value.data != nullptr) { text = {reinterpret_cast<const char*>(value.data), value.size}; }
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) { text.remove_prefix(1); }
    int64_t number = 0;
    for (const char digit : text) {
        if (!codec::is_digit(digit)) { break; }
        number = std::min(number * 10 + (digit - '0'), kMost);
    }
    return static_cast<int32_t>(negative ? -number : number);
}

const char* get_text(const AbecsRspParamMap* paramMap, uint16_t id) {
    if (refuse_null(paramMap, "'paramMap' is NULL")) { return nullptr; }
    return param_text(paramMap, id);
}

}  // namespace

void abecs_cmd_cex(AbecsComm* pinpad, const char* cexOpt, const uint8_t* timeout, const uint8_t* panMask) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_if(cexOpt == nullptr || kor_string_len(cexOpt) != kOptLength, "'cexOpt' is not valid!")) {
        return;
    }
    send(pinpad, kCex, Request::params([&](ParamWriter& params) { write_events(params, cexOpt, timeout, panMask); }));
}

int32_t abecs_cmd_cex_response(AbecsComm* pinpad, AbecsRspParamMap* paramMap, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(paramMap, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kCex, Response::into(paramMap), notification);
}

AbecsPpEvent_E abecs_cmd_cex_response_get_event(const AbecsRspParamMap* paramMap) {
    if (refuse_null(paramMap, "'paramMap' is NULL")) { return kNoEvent; }
    const AbecsRspParamValue* value = abecs_rsp_param_map_get(paramMap, ABECS_RSP_DATID_PP_EVENT);
    if (value == nullptr) { return raise(KOR_RESULT_PROTOCOL_ERROR, "Mandatory PP_EVENT not found"), kNoEvent; }
    const int32_t event = to_number(*value);
    if (!is_pp_event(event)) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid code for PP_EVENT: %d", event), kNoEvent;
    }
    return static_cast<AbecsPpEvent_E>(event);
}

const char* abecs_cmd_cex_response_get_trk1inc(const AbecsRspParamMap* paramMap) {
    return get_text(paramMap, ABECS_RSP_DATID_PP_TRK1INC);
}

const char* abecs_cmd_cex_response_get_trk2inc(const AbecsRspParamMap* paramMap) {
    return get_text(paramMap, ABECS_RSP_DATID_PP_TRK2INC);
}

const char* abecs_cmd_cex_response_get_trk3inc(const AbecsRspParamMap* paramMap) {
    return get_text(paramMap, ABECS_RSP_DATID_PP_TRK3INC);
}
