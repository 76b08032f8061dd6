// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/lmf.h"

#include "abecs/cmd/frame.h"
#include "abecs/cmd/media.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/kor/string_list.h"

using kor::raise;

namespace {

constexpr abecs::Command kLmf{.id = "LMF"};

void read_names(abecs::ParamReader& params, KorList* out) {
    while (AbecsParam* param = params.next()) {
        const uint16_t id = abecs_param_get_id(param);
        if (id != ABECS_RSP_DATID_PP_MFNAME) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Unrecognized RSP_DATID: %hu", id);
        }
        char name[abecs::kMediaNameWidth + 1];
        abecs_param_read_field_a(param, name, sizeof name, abecs::kMediaNameWidth, false);
        kor_string_list_append(out, name);
    }
}

}  // namespace

int32_t abecs_cmd_lmf(AbecsComm* pinpad, KorList* out) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), kRaised; }
    kor_string_list_clear(out);
    return call(pinpad, kLmf, Request::bare(), Response::params([&](ParamReader& params) { read_names(params, out); }));
}
