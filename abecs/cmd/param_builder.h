// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_PARAM_BUILDER_H
#define QUORVEL_ABECS_CMD_PARAM_BUILDER_H

#include <cstddef>
#include <cstdint>

#include "abecs/data/spe_param.h"
#include "core/construct.h"
#include "core/function_ref.h"
#include "quorvel/abecs/cmd/builder.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/set.h"

// The core of the builders that callers fill setter by setter: a run of parameters in the order of the calls, each at
// most once between two resets. A command's builder derives from it:
//
//     struct AbecsCmdGcxBuilder : abecs::ParamBuilder {};
//
// and is sent with Request::built(builder->command), as often as the caller likes.
namespace abecs {

struct ParamBuilder {
    KorSet* ids;  // of the parameters added since the last reset
    AbecsCmdBuilder* command;
};

void init_params(ParamBuilder& builder);
void reset_params(ParamBuilder& builder);
void release_params(ParamBuilder& builder);
[[nodiscard]] bool has_param(const ParamBuilder& builder, AbecsSpeId_E id);

template <typename Builder>
void delete_builder(Builder** builder) {
    if (builder == nullptr || *builder == nullptr) { return; }
    release_params(**builder);
    kor_heap_free(*builder);
    *builder = nullptr;
}

// Makes a builder and lets `reset` give it the parameters that it always has. What fails in there takes the builder
// with it.
template <typename Builder, typename Reset>
[[nodiscard]] Builder* new_builder(Reset&& reset) {
    return kor::construct(delete_builder<Builder>, [&](Builder* builder) {
        init_params(*builder);
        reset(builder);
    });
}

// The setters' common part. All raise ILLEGAL_ARGUMENT "'builder' is NULL", and ILLEGAL_STATE "%s already set" once the
// value has been found good; after any raise they return false and the builder is as it was.

using WriteParam = kor::FunctionRef<void(AbecsParam*)>;

// The parameter that `write` fills.
bool add_param(ParamBuilder* builder, AbecsSpeId_E id, WriteParam write);

// One number, in as many digits or bytes as the parameter has.
bool add_number(ParamBuilder* builder, SpeNumber id, uint64_t value);

// Bytes as they are: so many, or as many as the parameter always has.
bool add_bytes(ParamBuilder* builder, AbecsSpeId_E id, const void* bytes, size_t size);
bool add_bytes(ParamBuilder* builder, SpeBytes id, const void* bytes);

// False, with an error raised that calls the text `name`, when it is not as many digits as the parameter has.
[[nodiscard]] bool check_digits(SpeBytes id, const char* text, const char* name);
bool add_digits(ParamBuilder* builder, SpeBytes id, const char* text, const char* name);

bool add_currency(ParamBuilder* builder, uint16_t trnCurr);
bool add_emv_data(ParamBuilder* builder, const AbecsEmvData* emvData);
bool add_tag_list(ParamBuilder* builder, const AbecsTagList* tagList);
bool add_message(ParamBuilder* builder, const char* dspMsg);

}  // namespace abecs

#endif
