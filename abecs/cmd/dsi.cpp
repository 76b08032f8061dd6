// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dsi.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/media.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

int32_t abecs_cmd_dsi(AbecsComm* pinpad, const char* filename) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_media_name(filename)) { return kRaised; }
    const MediaName name(filename);
    return call(pinpad, {.id = "DSI"}, Request::params([&](ParamWriter& params) {
                    params.put(ABECS_SPE_ID_MFNAME, [&](AbecsParam* param) {
                        abecs_param_write_field_a(param, name.text, kMediaNameWidth, false);
                    });
                }),
                Response::status());
}
