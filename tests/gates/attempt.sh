#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# attempt.sh <root> <compiler> [<flag> ...]: a try block that is never run does not compile, and one that is does.
set -euo pipefail
cd "$1"
shift
compiles() {
    printf '#include "core/attempt.h"\nvoid f();\nvoid f() { %s; }\n' "$1" |
        "${@:2}" -I . -I include -fsyntax-only -Wall -Werror -x c++ - 2>&1
}
run='kor::attempt([] {}).on_any([] {}).on(KOR_RESULT_IO_ERROR, [] {}).on_any([] {}).cleanup([] {})'
compiles "$run.run()" "$@" || { echo "a try block does not compile"; exit 1; }
for forgotten in 'kor::attempt([] {})' 'kor::attempt([] {}).on_any([] {})' "$run"; do
    if said=$(compiles "$forgotten" "$@"); then echo "compiles: $forgotten"; exit 1; fi
    grep -q 'does nothing until run' <<<"$said" || { echo "$said"; exit 1; }
done
