// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gox.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/data/spe_mthd_pin.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

struct AbecsCmdGoxBuilder : ParamBuilder {
    AbecsSpeMthdPin_E mthdPin;
};

namespace {

constexpr Command kGox{.id = "GOX"};

// 0 for the methods that have no working key.
size_t working_key_size(AbecsSpeMthdPin_E method) {
    switch (method) {
        case ABECS_SPE_MTHD_PIN_MK_WK_DES:
            return 8;
        case ABECS_SPE_MTHD_PIN_MK_WK_TDES:
            return 16;
        default:
            return 0;
    }
}

}  // namespace

AbecsCmdGoxBuilder* abecs_cmd_gox_builder_new(uint8_t acqRef, AbecsSpeMthdPin_E mthdPin, uint8_t keyIdx) {
    return new_builder<AbecsCmdGoxBuilder>(
        [&](AbecsCmdGoxBuilder* builder) { abecs_cmd_gox_builder_reset(builder, acqRef, mthdPin, keyIdx); });
}

void abecs_cmd_gox_builder_reset(AbecsCmdGoxBuilder* builder, uint8_t acqRef, AbecsSpeMthdPin_E mthdPin,
                                 uint8_t keyIdx) {
    if (refuse_null(builder, "'builder' is NULL")
        || refuse_if(acqRef > kMaxIndex, "Invalid 'acqRef': %d (min: 0, max: 99)", acqRef)
        || refuse_outside(mthdPin, ABECS_SPE_MTHD_PIN_MK_WK_DES, ABECS_SPE_MTHD_PIN_DUKPT_TDES, "AbecsSpeMthdPin_E")
        || refuse_if(keyIdx > kMaxIndex, "Invalid 'keyIdx': %d (min: 0, max: 99)", keyIdx)) {
        return;
    }
    reset_params(*builder);
    builder->mthdPin = mthdPin;
    add_number(builder, ABECS_SPE_ID_ACQREF, acqRef);
    add_number(builder, ABECS_SPE_ID_MTHDPIN, static_cast<uint64_t>(mthdPin));
    add_number(builder, ABECS_SPE_ID_KEYIDX, keyIdx);
}

void abecs_cmd_gox_builder_delete(AbecsCmdGoxBuilder** builder) { delete_builder(builder); }

void abecs_cmd_gox_builder_wkenc(AbecsCmdGoxBuilder* builder, const uint8_t* wkenc, size_t szWkenc) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    const size_t expected = working_key_size(builder->mthdPin);
    if (expected == 0) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "PIN encryption method (%s) does not use SPE_WKENC parameter",
                     mthd_pin_to_string(builder->mthdPin));
    }
    if (refuse_null(wkenc, "'wkenc' is NULL")
        || refuse_if(szWkenc != expected, "'szWkenc' is invalid (expected: %zu, available: %zu)", expected, szWkenc)) {
        return;
    }
    add_bytes(builder, ABECS_SPE_ID_WKENC, wkenc, szWkenc);
}

void abecs_cmd_gox_builder_trntype(AbecsCmdGoxBuilder* builder, uint8_t trnType) {
    add_number(builder, ABECS_SPE_ID_TRNTYPE, trnType);
}

void abecs_cmd_gox_builder_amount(AbecsCmdGoxBuilder* builder, uint64_t amount) {
    add_number(builder, ABECS_SPE_ID_AMOUNT, amount);
}

void abecs_cmd_gox_builder_cashback(AbecsCmdGoxBuilder* builder, uint64_t cashback) {
    add_number(builder, ABECS_SPE_ID_CASHBACK, cashback);
}

void abecs_cmd_gox_builder_trncurr(AbecsCmdGoxBuilder* builder, uint16_t trnCurr) { add_currency(builder, trnCurr); }

void abecs_cmd_gox_builder_goxopt(AbecsCmdGoxBuilder* builder, const char* goxOpt) {
    add_digits(builder, ABECS_SPE_ID_GOXOPT, goxOpt, "goxOpt");
}

void abecs_cmd_gox_builder_dspmsg(AbecsCmdGoxBuilder* builder, const char* dspMsg) { add_message(builder, dspMsg); }

void abecs_cmd_gox_builder_trmpar(AbecsCmdGoxBuilder* builder, const uint8_t* trmPar) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(trmPar, "'trmPar' is NULL")) { return; }
    add_bytes(builder, ABECS_SPE_ID_TRMPAR, trmPar);
}

void abecs_cmd_gox_builder_emvdata(AbecsCmdGoxBuilder* builder, const AbecsEmvData* emvData) {
    add_emv_data(builder, emvData);
}

void abecs_cmd_gox_builder_taglist(AbecsCmdGoxBuilder* builder, const AbecsTagList* tagList) {
    add_tag_list(builder, tagList);
}

void abecs_cmd_gox_builder_timeout(AbecsCmdGoxBuilder* builder, uint8_t timeout) {
    add_number(builder, ABECS_SPE_ID_TIMEOUT, timeout);
}

void abecs_cmd_gox(AbecsComm* pinpad, AbecsCmdGoxBuilder* builder) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(builder, "'builder' is NULL")) { return; }
    if (working_key_size(builder->mthdPin) != 0 && !has_param(*builder, ABECS_SPE_ID_WKENC)) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_WKENC not set");
    }
    send(pinpad, kGox, Request::built(builder->command));
}

int32_t abecs_cmd_gox_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kGox, Response::into(out), notification);
}
