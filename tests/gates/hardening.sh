#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# hardening.sh <readelf> <nm> <library> [fortified]
set -euo pipefail
readelf=$1 nm=$2 library=$3 fortified=${4:-}
failed=0
demand() { # <what> <text> <pattern>
    grep -qE "$3" <<<"$2" || { echo "the library lacks: $1"; failed=1; }
}

segments=$("$readelf" -lW "$library")
dynamic=$("$readelf" -dW "$library")
undefined=$("$nm" -D --undefined-only "$library")

demand 'a read-only relocation table' "$segments" 'GNU_RELRO'
demand 'a stack that is not executable' "$segments" 'GNU_STACK.* RW  '
demand 'binding at load time' "$dynamic" 'BIND_NOW|FLAGS_1.*NOW'
demand 'the stack protector' "$undefined" '__stack_chk_fail'
if [ -n "$fortified" ]; then
    for name in __longjmp_chk __vsnprintf_chk; do
        demand "fortified calls ($name)" "$undefined" "$name"
    done
fi
if grep -E 'TEXTREL' <<<"$dynamic"; then
    echo "the library relocates its code"; failed=1
fi
exit $failed
