// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/param_builder.h"

#include "abecs/cmd/builder.h"
#include "abecs/data/enum_table.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr uint32_t kIdCapacity = 16;
constexpr uint16_t kMaxCurrency = 999;
constexpr size_t kMaxMessage = 128;

// kOwn: the setter knows how.
enum class Form : uint8_t { kOwn, kDigits, kBinary, kBytes };

struct Row {
    AbecsSpeId_E value;
    const char* name;
    Form form = Form::kOwn;
    uint16_t width = 0;
};

constexpr std::array<Row, 29> kParams{{
    {ABECS_SPE_ID_MTHDPIN, "SPE_MTHDPIN", Form::kDigits, 1},
    {ABECS_SPE_ID_MTHDDAT, "SPE_MTHDDAT", Form::kDigits, 2},
    {ABECS_SPE_ID_TAGLIST, "SPE_TAGLIST"},
    {ABECS_SPE_ID_EMVDATA, "SPE_EMVDATA"},
    {ABECS_SPE_ID_TRACKS, "SPE_TRACKS", Form::kBytes, 4},
    {ABECS_SPE_ID_OPNDIG, "SPE_OPNDIG", Form::kDigits, 1},
    {ABECS_SPE_ID_KEYIDX, "SPE_KEYIDX", Form::kDigits, 2},
    {ABECS_SPE_ID_WKENC, "SPE_WKENC"},
    {ABECS_SPE_ID_TIMEOUT, "SPE_TIMEOUT", Form::kBinary, 1},
    {ABECS_SPE_ID_DATAIN, "SPE_DATAIN"},
    {ABECS_SPE_ID_ACQREF, "SPE_ACQREF", Form::kDigits, 2},
    {ABECS_SPE_ID_APPTYPE, "SPE_APPTYPE"},
    {ABECS_SPE_ID_AIDLIST, "SPE_AIDLIST"},
    {ABECS_SPE_ID_AMOUNT, "SPE_AMOUNT", Form::kDigits, 12},
    {ABECS_SPE_ID_CASHBACK, "SPE_CASHBACK", Form::kDigits, 12},
    {ABECS_SPE_ID_TRNDATE, "SPE_TRNDATE", Form::kBytes, 6},
    {ABECS_SPE_ID_TRNTIME, "SPE_TRNTIME", Form::kBytes, 6},
    {ABECS_SPE_ID_GCXOPT, "SPE_GCXOPT", Form::kBytes, 5},
    {ABECS_SPE_ID_GOXOPT, "SPE_GOXOPT", Form::kBytes, 5},
    {ABECS_SPE_ID_FCXOPT, "SPE_FCXOPT", Form::kBytes, 4},
    {ABECS_SPE_ID_TRMPAR, "SPE_TRMPAR", Form::kBytes, 10},
    {ABECS_SPE_ID_DSPMSG, "SPE_DSPMSG"},
    {ABECS_SPE_ID_ARC, "SPE_ARC", Form::kBytes, 2},
    {ABECS_SPE_ID_IVCBC, "SPE_IVCBC", Form::kBytes, 8},
    {ABECS_SPE_ID_TRNTYPE, "SPE_TRNTYPE", Form::kBinary, 1},
    {ABECS_SPE_ID_TRNCURR, "SPE_TRNCURR", Form::kDigits, 3},
    {ABECS_SPE_ID_PANMASK, "SPE_PANMASK", Form::kBytes, 4},
    {ABECS_SPE_ID_PBKMOD, "SPE_PBKMOD", Form::kBytes, 256},
    {ABECS_SPE_ID_PBKEXP, "SPE_PBKEXP"},
}};
static_assert(abecs::is_sorted_and_unique(kParams));

const Row& row_of(AbecsSpeId_E id) { return *abecs::find_row(kParams, id); }

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
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    AbecsParam* param = nullptr;
    bool added = false;
    const BuilderState before = save_builder(builder->command);
    kor::attempt([&] {
        param = abecs_param_new();
        abecs_param_set_id(param, static_cast<uint16_t>(id));
        write(param);
        if (has_param(*builder, id)) { return raise(KOR_RESULT_ILLEGAL_STATE, "%s already set", row_of(id).name); }
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

bool add_number(ParamBuilder* builder, AbecsSpeId_E id, uint64_t value) {
    return add_param(builder, id, [&](AbecsParam* param) {
        const Row& row = row_of(id);
        if (row.form == Form::kBinary) {
            abecs_param_write_field_x(param, static_cast<uint32_t>(value), row.width);
        } else {
            abecs_param_write_field_n(param, value, row.width);
        }
    });
}

bool add_bytes(ParamBuilder* builder, AbecsSpeId_E id, const void* bytes, size_t size) {
    return add_param(builder, id, [&](AbecsParam* param) { abecs_param_write_field_b(param, bytes, size); });
}

bool add_bytes(ParamBuilder* builder, AbecsSpeId_E id, const void* bytes) {
    return add_bytes(builder, id, bytes, row_of(id).width);
}

bool check_digits(AbecsSpeId_E id, const char* text, const char* name) {
    const size_t width = row_of(id).width;
    bool good = false;
    kor::attempt([&] {
        abecs_data_check_n_string(text, name, width, width);
        good = true;
    }).run();
    return good;
}

bool add_digits(ParamBuilder* builder, AbecsSpeId_E id, const char* text, const char* name) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    return check_digits(id, text, name) && add_bytes(builder, id, text);
}

bool add_currency(ParamBuilder* builder, uint16_t trnCurr) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    if (trnCurr > kMaxCurrency) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'trnCurr' (maximum: 999, requested: %d)", trnCurr), false;
    }
    return add_number(builder, ABECS_SPE_ID_TRNCURR, trnCurr);
}

bool add_emv_data(ParamBuilder* builder, const AbecsEmvData* emvData) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    if (emvData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'emvData' is NULL"), false; }
    if (emvData->szData > sizeof emvData->data) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'emvData->szData' is too long (size: %zu, maximum: %d)",
                     emvData->szData, static_cast<int>(sizeof emvData->data)),
               false;
    }
    return add_bytes(builder, ABECS_SPE_ID_EMVDATA, emvData->data, emvData->szData);
}

bool add_tag_list(ParamBuilder* builder, const AbecsTagList* tagList) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    if (tagList == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'tagList' is NULL"), false; }
    if (tagList->szData > sizeof tagList->data) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'tagList' is too long (size: %zu, maximum: %d)", tagList->szData,
                     static_cast<int>(sizeof tagList->data)),
               false;
    }
    return add_bytes(builder, ABECS_SPE_ID_TAGLIST, tagList->data, tagList->szData);
}

bool add_message(ParamBuilder* builder, const char* dspMsg) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"), false; }
    if (dspMsg == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'dspMsg' is NULL"), false; }
    const size_t length = kor_string_len(dspMsg);
    if (length > kMaxMessage) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'dspMsg' is too long (length: %zu, max: 128)", length), false;
    }
    return add_param(builder, ABECS_SPE_ID_DSPMSG,
                     [&](AbecsParam* param) { abecs_param_write_field_s(param, dspMsg, length, true); });
}

}  // namespace abecs
