// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gky.h"

#include "abecs/cmd/frame.h"

namespace {

constexpr abecs::Command kGky{.id = "GKY"};

}  // namespace

void abecs_cmd_gky(AbecsComm* pinpad) {
    using namespace abecs;
    send(pinpad, kGky, Request::bare());
}

int32_t abecs_cmd_gky_response(AbecsComm* pinpad, char* notification) {
    using namespace abecs;
    return poll(pinpad, kGky, Response::status(), notification);
}
