// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/clx.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kClx{.id = "CLX"};
constexpr size_t kNameWidth = width_of(ABECS_SPE_ID_MFNAME);

}  // namespace

int32_t abecs_cmd_clx(AbecsComm* pinpad, const char* dspMsg, const char* mfName) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    const size_t messageLength = dspMsg != nullptr ? kor_string_len(dspMsg) : 0;
    const size_t nameLength = mfName != nullptr ? kor_string_len(mfName) : 0;
    if (refuse_if(messageLength > kMaxDspMsg, "'dspMsg' length (%zu)  is greater than 128 characters", messageLength)
        || refuse_if(nameLength > kNameWidth, "'mfName' length (%zu) is greater than 8 characters", nameLength)) {
        return kRaised;
    }
    char name[kNameWidth + 1] = "";
    if (nameLength != 0) { kor_string_to_upper(name, mfName); }
    return call(pinpad, kClx, Request::params([&](ParamWriter& params) {
                    if (nameLength != 0) {
                        params.put(ABECS_SPE_ID_MFNAME, [&](AbecsParam* param) {
                            abecs_param_write_field_s(param, name, kNameWidth, false);
                        });
                    }
                    if (messageLength != 0) {
                        params.put(ABECS_SPE_ID_DSPMSG, [&](AbecsParam* param) {
                            abecs_param_write_field_s(param, dspMsg, messageLength, true);
                        });
                    }
                }),
                Response::parsed_status());
}
