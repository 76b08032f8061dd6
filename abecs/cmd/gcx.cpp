// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcx.h"

#include "abecs/cmd/frame.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/data/codec.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/string.h"

using kor::raise;
using namespace abecs;

struct AbecsCmdGcxBuilder : ParamBuilder {};

namespace {

constexpr Command kGcx{.id = "GCX"};
constexpr uint8_t kMaxAcquirer = 99;
constexpr size_t kMaxAppTypes = 10;
constexpr uint8_t kMaxAppType = 98;
constexpr size_t kMaxRecords = 128;
constexpr size_t kRecordLength = 4;  // the acquirer's two characters, the record's two
constexpr size_t kAcquirerLength = 2;

void write_app_types(AbecsParam* param, const uint8_t* appTypes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (appTypes[i] == 0 || appTypes[i] > kMaxAppType) {
            return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "invalid value for 'appTypes[%zu]: %d (min: 1, max: 98)", i,
                         appTypes[i]);
        }
        abecs_param_write_field_n(param, appTypes[i], 2);
    }
}

void write_records(AbecsParam* param, const char* records, size_t count) {
    for (size_t i = 0; i < count; ++i, records += kRecordLength) {
        if (!abecs_data_is_numeric_field(records, kAcquirerLength, nullptr)) {
            return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid acquirer identifier at index %zu: \"%.*s\"", i,
                         static_cast<int>(kAcquirerLength), records);
        }
        const char* record = records + kAcquirerLength;
        if (!abecs_data_is_alphanumeric_field(record, kRecordLength - kAcquirerLength, nullptr)) {
            return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid record at index %zu: 0x%02x 0x%02x", i,
                         codec::shown(record[0]), codec::shown(record[1]));
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
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"); }
    if (trnDate == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'trnDate' is NULL"); }
    if (trnTime == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'trnTime' is NULL"); }
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
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"); }
    if (acqRef > kMaxAcquirer) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'acqRef' (maximum: 99, requested: %d)", acqRef);
    }
    add_number(builder, ABECS_SPE_ID_ACQREF, acqRef);
}

void abecs_cmd_gcx_builder_apptype(AbecsCmdGcxBuilder* builder, const uint8_t* appTypes, size_t szAppTypes) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"); }
    if (appTypes == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'appTypes' is NULL"); }
    if (szAppTypes == 0 || szAppTypes > kMaxAppTypes) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "invalid value for 'szAppTypes': %zu (min: 1, max: 10)", szAppTypes);
    }
    add_param(builder, ABECS_SPE_ID_APPTYPE, [&](AbecsParam* param) { write_app_types(param, appTypes, szAppTypes); });
}

void abecs_cmd_gcx_builder_aidlist(AbecsCmdGcxBuilder* builder, const char* aidRecords) {
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"); }
    if (aidRecords == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'aidRecords' is NULL"); }
    const size_t length = kor_string_len(aidRecords);
    if (length % kRecordLength != 0) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid length for for 'aidRecords': %zu (must be a multiple of 4)",
                     length);
    }
    const size_t count = length / kRecordLength;
    if (count == 0 || count > kMaxRecords) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid number of records 'aidRecords': %zu (min: 1, max: 128)",
                     count);
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
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"); }
    if (builder == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'builder' is NULL"); }
    send(pinpad, kGcx, Request::built(builder->command));
}

int32_t abecs_cmd_gcx_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification) {
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), kRaised; }
    return poll(pinpad, kGcx, Response::into(out), notification);
}
