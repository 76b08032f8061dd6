// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/ged.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGed{.id = "GED"};

void read_emv_data(ParamReader& params, AbecsEmvData& out) {
    while (AbecsParam* param = params.next()) {
        if (abecs_param_get_id(param) != ABECS_RSP_DATID_PP_EMVDATA) { continue; }
        const size_t size = abecs_param_available_read(param);
        if (size > sizeof out.data) { return raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed PP_EMVDATA"); }
        abecs_param_read_field_b(param, out.data, sizeof out.data, size);
        out.szData = size;
        return;
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "Missing required parameter in response: PP_EMVDATA");
}

}  // namespace

int32_t abecs_cmd_ged(AbecsComm* pinpad, const AbecsTagList* tagList, AbecsEmvData* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(tagList, "'tagList' is NULL")
        || refuse_if(tagList->szData > sizeof tagList->data, "'tagList->szData' is too long (max: %d, requested: %zu)",
                     static_cast<int>(sizeof tagList->data), tagList->szData)
        || refuse_null(out, "'out' is NULL")) {
        return kRaised;
    }
    return call(pinpad, kGed, Request::params([&](ParamWriter& params) {
                    params.bytes(ABECS_SPE_ID_TAGLIST, tagList->data, tagList->szData);
                }),
                Response::params([&](ParamReader& params) { read_emv_data(params, *out); }));
}
