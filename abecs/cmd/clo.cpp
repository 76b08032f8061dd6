// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/clo.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/message.h"

using namespace abecs;
using namespace kor;

int32_t abecs_cmd_clo(AbecsComm* pinpad, const char* msg) {
    const char* text = msg != nullptr ? msg : "";
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_long_message(text)) { return kRaised; }
    return call(pinpad, {.id = "CLO"}, Request::fields([&](AbecsPacket* packet) { write_message(packet, text); }),
                Response::status());
}
