// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcx.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/data/codec.h"
#include "core/check.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

struct AbecsCmdGcxBuilder : ParamBuilder {};

namespace {

constexpr Command kGcx{.id = "GCX"};
constexpr size_t kMaxAppTypes = 10;
constexpr uint8_t kMaxAppType = 98;
constexpr size_t kMaxRecords = 128;
constexpr size_t kRecordLength = 4;  // the acquirer's two characters, the record's two
constexpr size_t kAcquirerLength = 2;

void write_app_types(AbecsParam* param, const uint8_t* appTypes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (refuse_if(appTypes[i] == 0 || appTypes[i] > kMaxAppType,
                      "invalid value for 'appTypes[%zu]: %d (min: 1, max: 98)", i, appTypes[i])) {
            return;
        }
        abecs_param_write_field_n(param, appTypes[i], 2);
    }
}

void write_records(AbecsParam* param, const char* records, size_t count) {
    for (size_t i = 0; i < count; ++i, records += kRecordLength) {
        if (refuse_if(!abecs_data_is_numeric_field(records, kAcquirerLength, nullptr),
                      "Invalid acquirer identifier at index %zu: \"%.*s\"", i, static_cast<int>(kAcquirerLength),
                      records)) {
            return;
        }
        const char* record = records + kAcquirerLength;
        if (refuse_if(!abecs_data_is_alphanumeric_field(record, kRecordLength - kAcquirerLength, nullptr),
                      "Invalid record at index %zu: 0x%02x 0x%02x", i, codec::shown(record[0]),
                      codec::shown(record[1]))) {
            return;
        }
        abecs_param_write_field_b(param, records, kRecordLength);
    }
}

}  // namespace

AbecsCmdGcxBuilder* abecs_cmd_gcx_builder_new(const char* trnDate, const char* trnTime) {
    return new_builder<AbecsCmdGcxBuilder>(
        [&](AbecsCmdGcxBuilder* builder) { abecs_cmd_gcx_builder_reset(builder, trnDate, trnTime); });
}

void abecs_cmd_gcx_builder_reset(AbecsCmdGcxBuilder* builder, const char* trnDate, const char* trnTime) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(trnDate, "'trnDate' is NULL")
        || refuse_null(trnTime, "'trnTime' is NULL")) {
        return;
    }
    if (!check_digits(ABECS_SPE_ID_TRNDATE, trnDate, "trnDate")) { return; }
    if (!check_digits(ABECS_SPE_ID_TRNTIME, trnTime, "trnTime")) { return; }
    reset_params(*builder);
    add_bytes(builder, ABECS_SPE_ID_TRNDATE, trnDate);
    add_bytes(builder, ABECS_SPE_ID_TRNTIME, trnTime);
}

void abecs_cmd_gcx_builder_delete(AbecsCmdGcxBuilder** builder) { delete_builder(builder); }

void abecs_cmd_gcx_builder_trntype(AbecsCmdGcxBuilder* builder, uint8_t trnType) {
    add_number(builder, ABECS_SPE_ID_TRNTYPE, trnType);
}

void abecs_cmd_gcx_builder_acqref(AbecsCmdGcxBuilder* builder, uint8_t acqRef) {
    if (refuse_null(builder, "'builder' is NULL")
        || refuse_if(acqRef > kMaxIndex, "Invalid 'acqRef' (maximum: 99, requested: %d)", acqRef)) {
        return;
    }
    add_number(builder, ABECS_SPE_ID_ACQREF, acqRef);
}

void abecs_cmd_gcx_builder_apptype(AbecsCmdGcxBuilder* builder, const uint8_t* appTypes, size_t szAppTypes) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(appTypes, "'appTypes' is NULL")
        || refuse_if(szAppTypes == 0 || szAppTypes > kMaxAppTypes,
                     "invalid value for 'szAppTypes': %zu (min: 1, max: 10)", szAppTypes)) {
        return;
    }
    add_param(builder, ABECS_SPE_ID_APPTYPE, [&](AbecsParam* param) { write_app_types(param, appTypes, szAppTypes); });
}

void abecs_cmd_gcx_builder_aidlist(AbecsCmdGcxBuilder* builder, const char* aidRecords) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(aidRecords, "'aidRecords' is NULL")) { return; }
    const size_t length = kor_string_len(aidRecords);
    if (refuse_if(length % kRecordLength != 0, "Invalid length for for 'aidRecords': %zu (must be a multiple of 4)",
                  length)) {
        return;
    }
    const size_t count = length / kRecordLength;
    if (refuse_if(count == 0 || count > kMaxRecords, "Invalid number of records 'aidRecords': %zu (min: 1, max: 128)",
                  count)) {
        return;
    }
    add_param(builder, ABECS_SPE_ID_AIDLIST, [&](AbecsParam* param) { write_records(param, aidRecords, count); });
}

void abecs_cmd_gcx_builder_amount(AbecsCmdGcxBuilder* builder, uint64_t amount) {
    add_number(builder, ABECS_SPE_ID_AMOUNT, amount);
}

void abecs_cmd_gcx_builder_cashback(AbecsCmdGcxBuilder* builder, uint64_t cashback) {
    add_number(builder, ABECS_SPE_ID_CASHBACK, cashback);
}

void abecs_cmd_gcx_builder_trncurr(AbecsCmdGcxBuilder* builder, uint16_t trnCurr) { add_currency(builder, trnCurr); }

void abecs_cmd_gcx_builder_gcxopt(AbecsCmdGcxBuilder* builder, const char* gcxOpt) {
    add_digits(builder, ABECS_SPE_ID_GCXOPT, gcxOpt, "gcxOpt");
}

void abecs_cmd_gcx_builder_panmask(AbecsCmdGcxBuilder* builder, const char* panMask) {
    add_digits(builder, ABECS_SPE_ID_PANMASK, panMask, "panMask");
}

void abecs_cmd_gcx_builder_emvdata(AbecsCmdGcxBuilder* builder, const AbecsEmvData* emvData) {
    add_emv_data(builder, emvData);
}

void abecs_cmd_gcx_builder_taglist(AbecsCmdGcxBuilder* builder, const AbecsTagList* tagList) {
    add_tag_list(builder, tagList);
}

void abecs_cmd_gcx_builder_timeout(AbecsCmdGcxBuilder* builder, uint8_t timeout) {
    add_number(builder, ABECS_SPE_ID_TIMEOUT, timeout);
}

void abecs_cmd_gcx_builder_dspmsg(AbecsCmdGcxBuilder* builder, const char* dspMsg) { add_message(builder, dspMsg); }

void abecs_cmd_gcx(AbecsComm* pinpad, AbecsCmdGcxBuilder* builder) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(builder, "'builder' is NULL")) { return; }
    send(pinpad, kGcx, Request::built(builder->command));
}

int32_t abecs_cmd_gcx_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kGcx, Response::into(out), notification);
}
