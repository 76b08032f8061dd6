// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tle.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kTle{.id = "TLE", .unexpectedId = UnexpectedId::kTable};

}  // namespace

int32_t abecs_cmd_tle(AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    return call(pinpad, kTle, Request::bare(), Response::status());
}
