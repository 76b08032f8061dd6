// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dsp.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/message.h"

using namespace abecs;
using namespace kor;

int32_t abecs_cmd_dsp(AbecsComm* pinpad, const char* msg) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(msg, "'msg' is NULL") || refuse_long_message(msg)) {
        return kRaised;
    }
    return call(pinpad, {.id = "DSP"}, Request::fields([&](AbecsPacket* packet) { write_message(packet, msg); }),
                Response::status());
}
