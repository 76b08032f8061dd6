// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mle.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kMle{.id = "MLE"};

}  // namespace

int32_t abecs_cmd_mle(AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    return call(pinpad, kMle, Request::bare(), Response::status());
}
