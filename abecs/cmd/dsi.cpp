// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dsi.h"

#include "abecs/cmd/frame.h"
#include "abecs/cmd/media.h"
#include "core/raise.h"
#include "quorvel/abecs/spe_id.h"

using kor::raise;

namespace {

constexpr abecs::Command kDsi{.id = "DSI"};

}  // namespace

int32_t abecs_cmd_dsi(AbecsComm* pinpad, const char* filename) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (!check_media_name(filename)) { return kRaised; }
    const MediaName name(filename);
    return call(pinpad, kDsi, Request::params([&](ParamWriter& params) {
                    params.put(ABECS_SPE_ID_MFNAME, [&](AbecsParam* param) {
                        abecs_param_write_field_a(param, name.text, kMediaNameWidth, false);
                    });
                }),
                Response::status());
}
