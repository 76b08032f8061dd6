// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mlr.h"

#include "abecs/cmd/frame.h"
#include "abecs/cmd/media.h"
#include "core/raise.h"
#include "quorvel/abecs/spe_id.h"

using kor::raise;

namespace {

constexpr abecs::Command kMlr{.id = "MLR"};

}  // namespace

int32_t abecs_cmd_mlr(AbecsComm* pinpad, const uint8_t* data, size_t szData) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (data == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL"), kRaised; }
    if (szData > kMaxMediaBlock) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'szData' is too big (max: %d, req: %zu)",
                     static_cast<int>(kMaxMediaBlock), szData),
               kRaised;
    }
    if (szData == 0) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'szData' is zero"), kRaised; }
    return call(pinpad, kMlr, Request::params([&](ParamWriter& params) {
                    params.put(ABECS_SPE_ID_DATAIN,
                               [&](AbecsParam* param) { abecs_param_write_field_b(param, data, szData); });
                }),
                Response::status());
}
