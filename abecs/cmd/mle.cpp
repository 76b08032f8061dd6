// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mle.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"

using kor::raise;

namespace {

constexpr abecs::Command kMle{.id = "MLE"};

}  // namespace

int32_t abecs_cmd_mle(AbecsComm* pinpad) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    return call(pinpad, kMle, Request::bare(), Response::status());
}
