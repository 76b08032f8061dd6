// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gtk.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/param_builder.h"
#include "abecs/cmd/spe_mthd_rules.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

struct AbecsCmdGtkBuilder : ParamBuilder {
    int32_t mthdDat;
};

namespace {

constexpr Command kGtk{.id = "GTK"};
constexpr int32_t kNoMethod = -1;
constexpr size_t kTracksLength = 4;
constexpr int32_t kMaxOpenDigits = 8;

const char* name_of(const DataMethod& method) { return abecs_spe_mthd_dat_to_string(method.value); }

// Null, with an error raised, without a builder and while it has no method.
const DataMethod* method_of(const AbecsCmdGtkBuilder* builder) {
    if (refuse_null(builder, "'builder' is NULL")) { return nullptr; }
    if (builder->mthdDat == kNoMethod) { return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT not set yet"), nullptr; }
    const DataMethod* method = find_data_method(builder->mthdDat);
    if (method == nullptr) { raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"); }
    return method;
}

// Whether the method needs more than was set; an error has then been raised. Without a method the tracks come in clear.
bool refuse_incomplete(const AbecsCmdGtkBuilder& builder) {
    const DataMethod* method = find_data_method(builder.mthdDat);
    if (method == nullptr) { return false; }
    const bool hasModulus = has_param(builder, ABECS_SPE_ID_PBKMOD);
    return refuse_if(method->has_key_index() && !has_param(builder, ABECS_SPE_ID_KEYIDX),
                     "Missing SPE_KEYIDX (SPE_MTHDDAT: %s)", name_of(*method))
           || refuse_if(method->workingKeySize != 0 && !has_param(builder, ABECS_SPE_ID_WKENC),
                        "Missing SPE_WKENC (SPE_MTHDDAT: %s)", name_of(*method))
           || refuse_if(method->has_public_key() && !(hasModulus && has_param(builder, ABECS_SPE_ID_PBKEXP)),
                        "Missing %s (SPE_MTHDDAT: %s)", hasModulus ? "SPE_PBKEXP" : "SPE_PBKMOD", name_of(*method));
}

template <typename Value>
Value* read_value(const AbecsRspParamMap* rspParams, AbecsRspDatId_E id, Value* out) {
    if (refuse_null(rspParams, "'rspParams' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    const AbecsRspParamValue* value = abecs_rsp_param_map_get(rspParams, static_cast<uint16_t>(id));
    if (value == nullptr) { return nullptr; }
    out->size = value->size;
    if (value->size > sizeof out->data) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "'Parameter size violation for %s (size: %zu, max: %zu)",
                     abecs_rsp_dat_id_to_string(id), size_t{value->size}, sizeof out->data),
               nullptr;
    }
    if (value->size != 0) { std::memcpy(out->data, value->data, value->size); }
    return out;
}

}  // namespace

AbecsCmdGtkBuilder* abecs_cmd_gtk_builder_new(void) {
    return new_builder<AbecsCmdGtkBuilder>(abecs_cmd_gtk_builder_reset);
}

void abecs_cmd_gtk_builder_reset(AbecsCmdGtkBuilder* builder) {
    if (refuse_null(builder, "'builder' is NULL")) { return; }
    reset_params(*builder);
    builder->mthdDat = kNoMethod;
}

void abecs_cmd_gtk_builder_delete(AbecsCmdGtkBuilder** builder) { delete_builder(builder); }

void abecs_cmd_gtk_builder_tracks(AbecsCmdGtkBuilder* builder, const char* tracks) {
    if (refuse_null(builder, "'builder' is NULL") || refuse_null(tracks, "'tracks' is NULL")) { return; }
    const size_t length = kor_string_len(tracks);
    if (refuse_if(length != kTracksLength, "Invalid length for 'tracks' (expected: 4, requested: %zu)", length)
        || refuse_if(!abecs_data_is_numeric_field(tracks, length, nullptr), "SPE_TRACKS: Invalid N field")) {
        return;
    }
    add_bytes(builder, ABECS_SPE_ID_TRACKS, tracks);
}

void abecs_cmd_gtk_builder_mthd_dat(AbecsCmdGtkBuilder* builder, AbecsSpeMthdDat_E mthdDat) {
    if (refuse_null(builder, "'builder' is NULL")
        || refuse_if(find_data_method(mthdDat) == nullptr, "Invalid enumerator for %s: %d", "AbecsSpeMthdDat_E",
                     mthdDat)) {
        return;
    }
    if (add_number(builder, ABECS_SPE_ID_MTHDDAT, static_cast<uint64_t>(mthdDat))) { builder->mthdDat = mthdDat; }
}

void abecs_cmd_gtk_builder_iv_cbc(AbecsCmdGtkBuilder* builder, const uint8_t* ivCbc) {
    const DataMethod* method = method_of(builder);
    if (method == nullptr) { return; }
    if (!method->chained) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT (%s) does not uses SPE_IVCBC", name_of(*method));
    }
    if (refuse_null(ivCbc, "'ivCbc' is NULL")) { return; }
    add_bytes(builder, ABECS_SPE_ID_IVCBC, ivCbc);
}

void abecs_cmd_gtk_builder_opn_dig(AbecsCmdGtkBuilder* builder, int32_t opnDig) {
    if (refuse_null(builder, "'builder' is NULL")
        || refuse_if(opnDig < 0 || opnDig > kMaxOpenDigits || opnDig % 2 != 0, "Invalid enumerator for %s: %d",
                     "SPE_OPNDIG", opnDig)) {
        return;
    }
    add_number(builder, ABECS_SPE_ID_OPNDIG, static_cast<uint64_t>(opnDig));
}

void abecs_cmd_gtk_builder_key_idx(AbecsCmdGtkBuilder* builder, uint8_t keyIdx) {
    const DataMethod* method = method_of(builder);
    if (method == nullptr) { return; }
    if (!method->has_key_index()) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT (%s) does not use SPE_KEYIDX", name_of(*method));
    }
    if (refuse_if(keyIdx > kMaxIndex, "Invalid key index (max: 99, requested: %d)", keyIdx)) { return; }
    add_number(builder, ABECS_SPE_ID_KEYIDX, keyIdx);
}

void abecs_cmd_gtk_builder_wk_enc(AbecsCmdGtkBuilder* builder, const AbecsCmdGtkWkEnc* wkEnc) {
    const DataMethod* method = method_of(builder);
    if (method == nullptr) { return; }
    if (method->workingKeySize == 0) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT (%s) does not uses SPE_WKENC", name_of(*method));
    }
    if (refuse_null(wkEnc, "'wkEnc' is NULL")
        || refuse_if(wkEnc->size != method->workingKeySize, "Invalid size of SPE_WKENC (expected: %zu, requested: %zu)",
                     method->workingKeySize, size_t{wkEnc->size})) {
        return;
    }
    add_bytes(builder, ABECS_SPE_ID_WKENC, wkEnc->data, wkEnc->size);
}

void abecs_cmd_gtk_builder_pbk_mod(AbecsCmdGtkBuilder* builder, const uint8_t* pbkMod) {
    const DataMethod* method = method_of(builder);
    if (method == nullptr) { return; }
    if (!method->has_public_key()) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT (%s) does not use SPE_not SPE_PBKMOD", name_of(*method));
    }
    if (refuse_null(pbkMod, "'pbkMod' is NULL")) { return; }
    add_bytes(builder, ABECS_SPE_ID_PBKMOD, pbkMod);
}

void abecs_cmd_gtk_builder_pbk_exp(AbecsCmdGtkBuilder* builder, const AbecsCmdGtkPbkExp* pbkExp) {
    const DataMethod* method = method_of(builder);
    if (method == nullptr) { return; }
    if (!method->has_public_key()) {
        return raise(KOR_RESULT_ILLEGAL_STATE, "SPE_MTHDDAT (%s) does not use SPE_not SPE_PBKEXP", name_of(*method));
    }
    if (refuse_null(pbkExp, "'pbkExp' is NULL")
        || refuse_if(pbkExp->size > sizeof pbkExp->data, "Invalid size for SPE_PBKEXP (max: 3, requested: %zu)",
                     size_t{pbkExp->size})) {
        return;
    }
    add_bytes(builder, ABECS_SPE_ID_PBKEXP, pbkExp->data, pbkExp->size);
}

int32_t abecs_cmd_gtk(AbecsComm* pinpad, AbecsCmdGtkBuilder* builder, AbecsRspParamMap* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(builder, "'builder' is NULL")
        || refuse_null(out, "'out' is NULL")) {
        return kRaised;
    }
    if (refuse_incomplete(*builder)) { return kRaised; }
    return call(pinpad, kGtk, Request::built(builder->command), Response::into(out));
}

AbecsCmdGtkEncPan* abecs_cmd_gtk_response_enc_pan(const AbecsRspParamMap* rspParams, AbecsCmdGtkEncPan* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_ENCPAN, out);
}

AbecsCmdGtkTrack1* abecs_cmd_gtk_response_track1(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack1* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRACK1, out);
}

AbecsCmdGtkTrack2* abecs_cmd_gtk_response_track2(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack2* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRACK2, out);
}

AbecsCmdGtkTrack3* abecs_cmd_gtk_response_track3(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack3* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRACK3, out);
}

AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk1_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRK1KSN, out);
}

AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk2_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRK2KSN, out);
}

AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk3_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_TRK3KSN, out);
}

AbecsCmdGtkKsn* abecs_cmd_gtk_response_enc_pan_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_ENCPANKSN, out);
}

AbecsCmdGtkEncKrand* abecs_cmd_gtk_response_enc_krand(const AbecsRspParamMap* rspParams, AbecsCmdGtkEncKrand* out) {
    return read_value(rspParams, ABECS_RSP_DATID_PP_ENCKRAND, out);
}
