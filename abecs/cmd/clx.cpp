// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/clx.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kClx{.id = "CLX"};
constexpr size_t kMaxMessage = 128;
constexpr size_t kNameWidth = 8;

}  // namespace

int32_t abecs_cmd_clx(AbecsComm* pinpad, const char* dspMsg, const char* mfName) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    const size_t messageLength = dspMsg != nullptr ? kor_string_len(dspMsg) : 0;
    const size_t nameLength = mfName != nullptr ? kor_string_len(mfName) : 0;
    if (messageLength > kMaxMessage) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'dspMsg' length (%zu)  is greater than 128 characters",
                     messageLength),
               kRaised;
    }
    if (nameLength > kNameWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'mfName' length (%zu) is greater than 8 characters", nameLength),
               kRaised;
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
