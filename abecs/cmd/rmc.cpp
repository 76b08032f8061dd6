// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/rmc.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/message.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kRmc{.id = "RMC"};

}  // namespace

void abecs_cmd_rmc(AbecsComm* pinpad, const char* msg) {
    const char* text = msg != nullptr ? msg : "";
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_long_message(text)) { return; }
    send(pinpad, kRmc, Request::fields([&](AbecsPacket* packet) { write_message(packet, text); }));
}

int32_t abecs_cmd_rmc_response(AbecsComm* pinpad, char* notification) {
    return poll(pinpad, kRmc, Response::status(), notification);
}
