// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/ged.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"

using kor::raise;
using namespace abecs;

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
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (tagList == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'tagList' is NULL"), kRaised; }
    if (tagList->szData > sizeof tagList->data) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'tagList->szData' is too long (max: %d, requested: %zu)",
                     static_cast<int>(sizeof tagList->data), tagList->szData),
               kRaised;
    }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), kRaised; }
    return call(pinpad, kGed, Request::params([&](ParamWriter& params) {
                    params.put(ABECS_SPE_ID_TAGLIST, [&](AbecsParam* param) {
                        abecs_param_write_field_b(param, tagList->data, tagList->szData);
                    });
                }),
                Response::params([&](ParamReader& params) { read_emv_data(params, *out); }));
}
