// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/fcx.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/data/codec.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

struct AbecsCmdFcxBuilder : ParamBuilder {
    bool arcRequired;
};

namespace {

constexpr Command kFcx{.id = "FCX"};
constexpr size_t kArcLength = width_of(ABECS_SPE_ID_ARC);

}  // namespace

AbecsCmdFcxBuilder* abecs_cmd_fcx_builder_new(const char* fcxOpt) {
    return new_builder<AbecsCmdFcxBuilder>(
        [&](AbecsCmdFcxBuilder* builder) { abecs_cmd_fcx_builder_reset(builder, fcxOpt); });
}

void abecs_cmd_fcx_builder_reset(AbecsCmdFcxBuilder* builder, const char* fcxOpt) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    if (!check_digits(ABECS_SPE_ID_FCXOPT, fcxOpt, "fcxOpt")) { return; }
    // The first option tells whether the host has answered: without an answer there is no response code.
    builder->arcRequired = fcxOpt[0] == '0' || fcxOpt[0] == '1';
    reset_params(*builder);
    add_bytes(builder, ABECS_SPE_ID_FCXOPT, fcxOpt);
}

void abecs_cmd_fcx_builder_delete(AbecsCmdFcxBuilder** builder) { delete_builder(builder); }

void abecs_cmd_fcx_builder_arc(AbecsCmdFcxBuilder* builder, const char* arc) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(arc, "'arc' is NULL")) { return; }
    const size_t length = kor_string_len(arc);
    if (refuse_if(length != kArcLength, "Invalid length of 'arc': %zu (expected: 2)", length)) { return; }
    size_t bad = 0;
    if (!abecs_data_is_alphanumeric_field(arc, length, &bad)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "arc[%zu] is invalid: 0x%02X", bad, codec::shown(arc[bad]));
    }
    if (!builder->arcRequired) { return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_ARC is not required"); }
    add_bytes(builder, ABECS_SPE_ID_ARC, arc);
}

void abecs_cmd_fcx_builder_emvdata(AbecsCmdFcxBuilder* builder, const AbecsEmvData* emvData) {
    add_emv_data(builder, emvData);
}

void abecs_cmd_fcx_builder_taglist(AbecsCmdFcxBuilder* builder, const AbecsTagList* tagList) {
    add_tag_list(builder, tagList);
}

void abecs_cmd_fcx_builder_timeout(AbecsCmdFcxBuilder* builder, uint8_t timeout) {
    add_number(builder, ABECS_SPE_ID_TIMEOUT, timeout);
}

void abecs_cmd_fcx(AbecsComm* pinpad, AbecsCmdFcxBuilder* builder) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(builder, "'builder' is NULL")
        || refuse_if(builder->arcRequired && !has_param(*builder, ABECS_SPE_ID_ARC), "'SPE_ARC' was not defined")) {
        return;
    }
    send(pinpad, kFcx, Request::built(builder->command));
}

int32_t abecs_cmd_fcx_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kFcx, Response::into(out), notification);
}
