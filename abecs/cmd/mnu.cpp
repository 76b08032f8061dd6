// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mnu.h"

#include <cstring>
#include <span>

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kMnu{.id = "MNU"};
constexpr size_t kOptionWidth = width_of(ABECS_SPE_ID_MNUOPT);
constexpr size_t kMaxOptions = 20;
constexpr size_t kChoiceWidth = 2;

using Slot = char[kOptionWidth + 1];

// An option with the NUL that its slot may lack: it is then too long for its field, and refused there.
struct Option {
    char text[sizeof(Slot) + 1]{};
    size_t length;

    explicit Option(const Slot& slot) : length(strnlen(slot, sizeof slot)) { std::memcpy(text, slot, length); }
};

bool refuse_options(std::span<const Slot> slots) {
    for (size_t i = 0; i < slots.size(); ++i) {
        const Option option(slots[i]);
        if (refuse_if(!abecs_data_is_alphanumeric_field(option.text, option.length, nullptr),
                      "'Invalid menu option at index %zu: %s", i, option.text)) {
            return true;
        }
    }
    return false;
}

void write_menu(ParamWriter& params, uint8_t timeout, const char* dspMsg, std::span<const Slot> slots) {
    if (timeout != 0) { params.number(ABECS_SPE_ID_TIMEOUT, timeout); }
    if (dspMsg != nullptr && !kor_string_is_empty(dspMsg)) {
        params.put(ABECS_SPE_ID_DSPMSG,
                   [&](AbecsParam* param) { abecs_param_write_field_s(param, dspMsg, kMaxDspMsg, true); });
    }
    for (const Slot& slot : slots) {
        params.put(ABECS_SPE_ID_MNUOPT, [&](AbecsParam* param) {
            abecs_param_write_field_s(param, Option(slot).text, kOptionWidth, false);
        });
    }
}

void read_choice(ParamReader& params, uint32_t& out) {
    AbecsParam* param = params.next();
    if (param == nullptr || abecs_param_get_id(param) != ABECS_RSP_DATID_PP_VALUE) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "PP_VALUE not present in response");
    }
    out = static_cast<uint32_t>(abecs_param_read_field_n(param, kChoiceWidth));
}

}  // namespace

void abecs_cmd_mnu(AbecsComm* pinpad, uint8_t timeout, const char* dspMsg, const char (*mnuOpts)[25], size_t numOpts) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_if(dspMsg != nullptr && kor_string_len(dspMsg) > kMaxDspMsg, "'dspMsg' is too long")
        || refuse_null(mnuOpts, "'mnuOpts' is NULL")
        || refuse_if(numOpts == 0 || numOpts > kMaxOptions, "Invalid numOpts: %zu (min: 1, max: 20)", numOpts)) {
        return;
    }
    const std::span slots(mnuOpts, numOpts);
    if (refuse_options(slots)) { return; }
    send(pinpad, kMnu, Request::params([&](ParamWriter& params) { write_menu(params, timeout, dspMsg, slots); }));
}

int32_t abecs_cmd_mnu_response(AbecsComm* pinpad, uint32_t* optOut, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(optOut, "'optOut' is NULL")) { return kRaised; }
    return poll(pinpad, kMnu, Response::params([&](ParamReader& params) { read_choice(params, *optOut); }),
                notification);
}
