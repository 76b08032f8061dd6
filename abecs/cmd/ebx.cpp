// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/ebx.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/cmd/param_text.h"
#include "abecs/cmd/spe_mthd_rules.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/rsp_dat_id.h"

using namespace abecs;
using namespace kor;

struct AbecsCmdEbxBuilder : ParamBuilder {
    AbecsSpeMthdDat_E mthdDat;
};

namespace {

constexpr Command kEbx{.id = "EBX"};
constexpr int kMaxData = 256;
constexpr size_t kBlock = 8;

// Numbers that are no methods are refused only where something has to be known about them, so these two are the limits
// of the methods' families and not of the table's rows.
constexpr int32_t kLastWithWorkingKey = ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC;
constexpr int32_t kLastWithKeyIndex = ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC;
constexpr bool is_within_limits(const DataMethod& method) {
    return (method.workingKeySize != 0) == (method.value <= kLastWithWorkingKey)
           && method.has_key_index() == (method.value <= kLastWithKeyIndex);
}
static_assert(std::all_of(kDataMethods.begin(), kDataMethods.end(), is_within_limits));

// Null for a number that is no method, which is then the error raised.
const char* name_of(AbecsSpeMthdDat_E method) {
    const char* name = abecs_spe_mthd_dat_to_string(method);
    return *name != '\0' ? name : nullptr;
}

const char* get_text(const AbecsRspParamMap* responseParams, uint16_t id) {
    if (refuse_null(responseParams, "'responseParams' is NULL")) { return nullptr; }
    return param_text(responseParams, id);
}

}  // namespace

AbecsCmdEbxBuilder* abecs_cmd_ebx_builder_new(const uint8_t* data, size_t szData, AbecsSpeMthdDat_E mthdDat,
                                              uint8_t keyIdx) {
    return new_builder<AbecsCmdEbxBuilder>(
        [&](AbecsCmdEbxBuilder* builder) { abecs_cmd_ebx_builder_reset(builder, data, szData, mthdDat, keyIdx); });
}

void abecs_cmd_ebx_builder_reset(AbecsCmdEbxBuilder* builder, const uint8_t* data, size_t szData,
                                 AbecsSpeMthdDat_E mthdDat, uint8_t keyIdx) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(data, "'data' is NULL")
        || refuse_if(szData == 0 || szData > kMaxData, "Invalid 'szData': %zu (min: 1, max: %d)", szData, kMaxData)
        || refuse_if(szData % kBlock != 0, "Invalid 'szData': %zu (it must be a multiple of 8)", szData)) {
        return;
    }
    if (mthdDat > kLastWithKeyIndex) {
        const char* name = name_of(mthdDat);
        if (name == nullptr) { return; }
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Unsupported 'mthdDat': %s", name);
    }
    if (refuse_if(keyIdx > kMaxIndex, "Invalid 'keyIdx': %d (min: 0, max: 99)", keyIdx)) { return; }
    reset_params(*builder);
    builder->mthdDat = mthdDat;
    if (!add_bytes(builder, ABECS_SPE_ID_DATAIN, data, szData)) { return; }
    if (!add_number(builder, ABECS_SPE_ID_MTHDDAT, static_cast<uint64_t>(mthdDat))) { return; }
    add_number(builder, ABECS_SPE_ID_KEYIDX, keyIdx);
}

void abecs_cmd_ebx_builder_delete(AbecsCmdEbxBuilder** builder) { delete_builder(builder); }

void abecs_cmd_ebx_builder_wkenc(AbecsCmdEbxBuilder* builder, const uint8_t* wkEnc, size_t szWkEnc) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    if (builder->mthdDat > kLastWithWorkingKey) {
        const char* name = name_of(builder->mthdDat);
        if (name == nullptr) { return; }
        return raise(KOR_RESULT_ILLEGAL_STATE, "current SPE_MTHDDAT (%s) does not accept SPE_WKENC", name);
    }
    if (refuse_null(wkEnc, "'wkEnc' is NULL")) { return; }
    const DataMethod* method = find_data_method(builder->mthdDat);
    if (method == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Missing case"); }
    if (refuse_if(szWkEnc != method->workingKeySize, "Invalid 'szWkEnc': %zu (expected: %zu)", szWkEnc,
                  method->workingKeySize)) {
        return;
    }
    add_bytes(builder, ABECS_SPE_ID_WKENC, wkEnc, szWkEnc);
}

void abecs_cmd_ebx_builder_ivcbc(AbecsCmdEbxBuilder* builder, const uint8_t* ivCbc) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    const DataMethod* method = find_data_method(builder->mthdDat);
    if (method == nullptr || !method->chained) {
        const char* name = name_of(builder->mthdDat);
        if (name == nullptr) { return; }
        return raise(KOR_RESULT_ILLEGAL_STATE, "current SPE_MTHDDAT (%s) does not accept SPE_IVCBC", name);
    }
    if (refuse_null(ivCbc, "'ivCbc' is NULL")) { return; }
    add_bytes(builder, ABECS_SPE_ID_IVCBC, ivCbc);
}

int32_t abecs_cmd_ebx(AbecsComm* pinpad, AbecsCmdEbxBuilder* builder, AbecsRspParamMap* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(builder, "'builder' is NULL")
        || refuse_null(out, "'out' is NULL")) {
        return kRaised;
    }
    kor_map_clear(out);
    if (builder->mthdDat <= kLastWithWorkingKey && !has_param(*builder, ABECS_SPE_ID_WKENC)) {
        const char* name = name_of(builder->mthdDat);
        if (name == nullptr) { return kRaised; }
        raise(KOR_RESULT_ILLEGAL_STATE, "Missing parameter SPE_WKENC (required due to SPE_MTHDDAT == %s)", name);
        return kRaised;
    }
    return call(pinpad, kEbx, Request::built(builder->command), Response::into(out));
}

const char* abecs_cmd_ebx_response_get_dataout(const AbecsRspParamMap* responseParams) {
    return get_text(responseParams, ABECS_RSP_DATID_PP_DATAOUT);
}

const char* abecs_cmd_ebx_response_get_ksn(const AbecsRspParamMap* responseParams) {
    return get_text(responseParams, ABECS_RSP_DATID_PP_KSN);
}
