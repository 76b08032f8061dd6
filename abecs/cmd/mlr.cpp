// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mlr.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/media.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kMlr{.id = "MLR"};

}  // namespace

int32_t abecs_cmd_mlr(AbecsComm* pinpad, const uint8_t* data, size_t szData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(data, "'data' is NULL")
        || refuse_if(szData > kMaxMediaBlock, "'szData' is too big (max: %d, req: %zu)",
                     static_cast<int>(kMaxMediaBlock), szData)
        || refuse_if(szData == 0, "'szData' is zero")) {
        return kRaised;
    }
    return call(pinpad, kMlr,
                Request::params([&](ParamWriter& params) { params.bytes(ABECS_SPE_ID_DATAIN, data, szData); }),
                Response::status());
}
