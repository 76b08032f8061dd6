// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dmf.h"

#include "abecs/cmd/frame.h"
#include "abecs/cmd/media.h"
#include "core/raise.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"

using kor::raise;

namespace {

constexpr abecs::Command kDmf{.id = "DMF"};

// False when an item was refused. None can be an item of a list.
bool check_names(const KorList* files) {
    for (const auto* node = kor_string_list_first(files); node != nullptr; node = kor_string_list_next(node)) {
        const char* name = kor_string_list_item(node);
        if (name == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'files' has an item that is NULL"), false; }
        const size_t length = kor_string_len(name);
        if (length > abecs::kMediaNameWidth) {
            return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "\"%s\" it too long (max: 8, requested: %zu)", name, length),
                   false;
        }
    }
    return true;
}

void write_names(abecs::ParamWriter& params, const KorList* files) {
    for (const auto* node = kor_string_list_first(files); node != nullptr; node = kor_string_list_next(node)) {
        const abecs::MediaName name(kor_string_list_item(node));
        params.put(ABECS_SPE_ID_MFNAME, [&](AbecsParam* param) {
            abecs_param_write_field_s(param, name.text, abecs::kMediaNameWidth, false);
        });
    }
}

}  // namespace

int32_t abecs_cmd_dmf(AbecsComm* pinpad, const KorList* files) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (files == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'files' is NULL"), kRaised; }
    if (kor_string_list_size(files) == 0) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "At least one file must be supplied"), kRaised;
    }
    if (!check_names(files)) { return kRaised; }
    return call(pinpad, kDmf, Request::params([&](ParamWriter& params) { write_names(params, files); }),
                Response::status());
}
