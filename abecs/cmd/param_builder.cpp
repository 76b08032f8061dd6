// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/param_builder.h"

#include "abecs/cmd/builder.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace {

constexpr uint32_t kIdCapacity = 16;
constexpr uint16_t kMaxCurrency = 999;
}  // namespace

namespace abecs {

void init_params(ParamBuilder& builder) {
    builder.ids = kor_int_set_new(kIdCapacity);
    builder.command = abecs_cmd_builder_new();
}

void reset_params(ParamBuilder& builder) {
    kor_set_clear(builder.ids);
    abecs_cmd_builder_reset(builder.command);
}

void release_params(ParamBuilder& builder) {
    kor_set_delete(&builder.ids);
    abecs_cmd_builder_delete(&builder.command);
}

bool has_param(const ParamBuilder& builder, AbecsSpeId_E id) { return kor_int_set_contains(builder.ids, id); }

bool add_param(ParamBuilder* builder, AbecsSpeId_E id, WriteParam write) {
    if (refuse_null(builder, "'builder' is NULL")) { return false; }
    AbecsParam* param = nullptr;
    bool added = false;
    const BuilderState before = save_builder(builder->command);
    attempt([&] {
        param = abecs_param_new();
        abecs_param_set_id(param, static_cast<uint16_t>(id));
        write(param);
        if (has_param(*builder, id)) { return raise(KOR_RESULT_ILLEGAL_STATE, "%s already set", spe_param(id).name); }
        abecs_cmd_builder_add_param(builder->command, param);
        kor_int_set_put(builder->ids, id);
        added = true;
    })
        .cleanup([&] {
            if (!added) { restore_builder(builder->command, before); }
            abecs_param_delete(&param);
        })
        .run();
    return added;
}

bool add_number(ParamBuilder* builder, SpeNumber id, uint64_t value) {
    return add_param(builder, id.id, [&](AbecsParam* param) { write_number(param, id, value); });
}

bool add_bytes(ParamBuilder* builder, AbecsSpeId_E id, const void* bytes, size_t size) {
    return add_param(builder, id, [&](AbecsParam* param) { abecs_param_write_field_b(param, bytes, size); });
}

bool add_bytes(ParamBuilder* builder, SpeBytes id, const void* bytes) {
    return add_bytes(builder, id.id, bytes, spe_param(id.id).width);
}

bool check_digits(SpeBytes id, const char* text, const char* name) {
    const size_t width = spe_param(id.id).width;
    bool good = false;
    attempt([&] {
        abecs_data_check_n_string(text, name, width, width);
        good = true;
    }).run();
    return good;
}

bool add_digits(ParamBuilder* builder, SpeBytes id, const char* text, const char* name) {
    if (refuse_null(builder, "'builder' is NULL")) { return false; }
    return check_digits(id, text, name) && add_bytes(builder, id, text);
}

bool add_currency(ParamBuilder* builder, uint16_t trnCurr) {
    if (refuse_null(builder, "'builder' is NULL")
        || refuse_if(trnCurr > kMaxCurrency, "Invalid 'trnCurr' (maximum: 999, requested: %d)", trnCurr)) {
        return false;
    }
    return add_number(builder, ABECS_SPE_ID_TRNCURR, trnCurr);
}

bool add_emv_data(ParamBuilder* builder, const AbecsEmvData* emvData) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(emvData, "'emvData' is NULL")
        || refuse_if(emvData->szData > sizeof emvData->data, "'emvData->szData' is too long (size: %zu, maximum: %d)",
                     emvData->szData, static_cast<int>(sizeof emvData->data))) {
        return false;
    }
    return add_bytes(builder, ABECS_SPE_ID_EMVDATA, emvData->data, emvData->szData);
}

bool add_tag_list(ParamBuilder* builder, const AbecsTagList* tagList) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(tagList, "'tagList' is NULL")
        || refuse_if(tagList->szData > sizeof tagList->data, "'tagList' is too long (size: %zu, maximum: %d)",
                     tagList->szData, static_cast<int>(sizeof tagList->data))) {
        return false;
    }
    return add_bytes(builder, ABECS_SPE_ID_TAGLIST, tagList->data, tagList->szData);
}

bool add_message(ParamBuilder* builder, const char* dspMsg) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(dspMsg, "'dspMsg' is NULL")) { return false; }
    const size_t length = kor_string_len(dspMsg);
    if (refuse_if(length > kMaxDspMsg, "'dspMsg' is too long (length: %zu, max: 128)", length)) { return false; }
    return add_param(builder, ABECS_SPE_ID_DSPMSG,
                     [&](AbecsParam* param) { abecs_param_write_field_s(param, dspMsg, length, true); });
}

}  // namespace abecs
