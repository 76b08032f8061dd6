// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gky.h"

#include "abecs/cmd/exchange.h"

using namespace abecs;

namespace {

constexpr Command kGky{.id = "GKY"};

}  // namespace

void abecs_cmd_gky(AbecsComm* pinpad) { send(pinpad, kGky, Request::bare()); }

int32_t abecs_cmd_gky_response(AbecsComm* pinpad, char* notification) {
    return poll(pinpad, kGky, Response::status(), notification);
}
