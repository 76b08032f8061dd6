// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mli.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/media.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kMli{.id = "MLI"};
constexpr int kReserved = 3;  // zero bytes behind the type

}  // namespace

int32_t abecs_cmd_mli(AbecsComm* pinpad, const char* filename, uint32_t size, uint16_t crc, uint8_t type) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_media_name(filename)) { return kRaised; }
    const MediaName name(filename);
    return call(pinpad, kMli, Request::params([&](ParamWriter& params) {
                    params.put(ABECS_SPE_ID_MFNAME, [&](AbecsParam* param) {
                        abecs_param_write_field_a(param, name.text, kMediaNameWidth, false);
                    });
                    params.put(ABECS_SPE_ID_MFINFO, [&](AbecsParam* param) {
                        abecs_param_write_field_x(param, size, 4);
                        abecs_param_write_field_x(param, crc, 2);
                        abecs_param_write_byte(param, type);
                        for (int i = 0; i < kReserved; ++i) { abecs_param_write_byte(param, 0); }
                    });
                }),
                Response::status());
}
