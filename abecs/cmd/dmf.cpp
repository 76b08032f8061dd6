// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dmf.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/media.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kDmf{.id = "DMF"};

// None can be an item of a list.
bool refuse_names(const KorList* files) {
    for (const auto* node = kor_string_list_first(files); node != nullptr; node = kor_string_list_next(node)) {
        const char* name = kor_string_list_item(node);
        if (refuse_null(name, "'files' has an item that is NULL")) { return true; }
        const size_t length = kor_string_len(name);
        if (refuse_if(length > kMediaNameWidth, "\"%s\" it too long (max: 8, requested: %zu)", name, length)) {
            return true;
        }
    }
    return false;
}

void write_names(ParamWriter& params, const KorList* files) {
    for (const auto* node = kor_string_list_first(files); node != nullptr; node = kor_string_list_next(node)) {
        const MediaName name(kor_string_list_item(node));
        params.put(ABECS_SPE_ID_MFNAME,
                   [&](AbecsParam* param) { abecs_param_write_field_s(param, name.text, kMediaNameWidth, false); });
    }
}

}  // namespace

int32_t abecs_cmd_dmf(AbecsComm* pinpad, const KorList* files) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(files, "'files' is NULL")
        || refuse_if(kor_string_list_size(files) == 0, "At least one file must be supplied")) {
        return kRaised;
    }
    if (refuse_names(files)) { return kRaised; }
    return call(pinpad, kDmf, Request::params([&](ParamWriter& params) { write_names(params, files); }),
                Response::status());
}
