#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# misuse.sh <root> <compiler> [<flag> ...]: what may be written and what does not compile: a try block that is never run; a
# function reference that outlives its lambda, or a request that was given a name; a parameter written in another form.
set -euo pipefail
cd "$1"
shift
compiles() {
    printf '#include "abecs/cmd/exchange.h"\n#include "core/attempt.h"\nusing namespace abecs;
        void f(AbecsComm*, ParamWriter&);\nvoid f(AbecsComm* pinpad [[maybe_unused]], ParamWriter& params [[maybe_unused]])
        { constexpr Command kAny [[maybe_unused]] {.id = "GIN"}; %s; }\n' "$1" |
        "${@:2}" -I . -I include -fsyntax-only -Wall -Werror -x c++ - 2>&1
}
must() { compiles "$@" || { echo "does not compile: $1"; exit 1; }; }
must_not() {  # <what it must say> <source> <compiler> ...
    local said
    if said=$(compiles "${@:2}"); then echo "compiles: $2"; exit 1; fi
    grep -qE "$1" <<<"$said" || { echo "$said"; exit 1; }
}
run='kor::attempt([] {}).on_any([] {}).on(KOR_RESULT_IO_ERROR, [] {}).on_any([] {}).cleanup([] {})'
must "$run.run()" "$@"
for forgotten in 'kor::attempt([] {})' 'kor::attempt([] {}).on_any([] {})' "$run"; do
    must_not 'does nothing until run' "$forgotten" "$@"
done

must 'send(pinpad, kAny, Request::fields([](AbecsPacket*) {}))' "$@"
must_not 'rvalue|no matching function' \
    'const auto write = [](AbecsPacket*) {}; auto named = Request::fields(write); send(pinpad, kAny, named)' "$@"
if "$1" --version | grep -q clang; then
    must_not 'dangling|destroyed' 'kor::FunctionRef<void()> kept = [] {}; kept()' "$@"
fi

must 'params.number(ABECS_SPE_ID_TIMEOUT, 1)' "$@"
must_not 'call to consteval|non-.constexpr|constant expression' 'params.number(ABECS_SPE_ID_TRACKS, 1)' "$@"
