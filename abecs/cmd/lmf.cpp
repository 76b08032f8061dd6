// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/lmf.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/media.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/kor/string_list.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kLmf{.id = "LMF"};

void read_names(ParamReader& params, KorList* out) {
    while (AbecsParam* param = params.next()) {
        const uint16_t id = abecs_param_get_id(param);
        if (id != ABECS_RSP_DATID_PP_MFNAME) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Unrecognized RSP_DATID: %hu", id);
        }
        char name[kMediaNameWidth + 1];
        abecs_param_read_field_a(param, name, sizeof name, kMediaNameWidth, false);
        kor_string_list_append(out, name);
    }
}

}  // namespace

int32_t abecs_cmd_lmf(AbecsComm* pinpad, KorList* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return kRaised; }
    kor_string_list_clear(out);
    return call(pinpad, kLmf, Request::bare(), Response::params([&](ParamReader& params) { read_names(params, out); }));
}
