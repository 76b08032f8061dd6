// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tle.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"

using kor::raise;

namespace {

constexpr abecs::Command kTle{.id = "TLE", .unexpectedId = abecs::UnexpectedId::kTable};

}  // namespace

int32_t abecs_cmd_tle(AbecsComm* pinpad) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    return call(pinpad, kTle, Request::bare(), Response::status());
}
