#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# abi.sh <library> <folder abi>: programs that were built with the interface as it was recorded run with this library. With
# UPDATE_ABI=1 the record is written anew, to be looked at: that is right for what was added, and for nothing else before
# the next major version. Exits with 77, to be skipped, where libabigail is missing.
set -euo pipefail
library=$1 record=$2/libquorvel0.abi private=$2/private.ini
command -v abidiff >/dev/null || { echo "abi: skipped, abidiff is not installed"; exit 77; }
[ "$(uname -m)" = x86_64 ] || { echo "abi: skipped, the record is that of x86_64"; exit 77; }

# recording <file>: without a path, a line number or anything else that differs from one machine or compiler to another.
# gcc has a longer name for what a va_list is than clang has.
recording() {
    abidw --no-corpus-path --no-comp-dir-path --no-show-locs --short-locs --type-id-style hash --no-write-default-sizes \
        --no-elf-needed --exported-interfaces-only --suppressions "$private" --out-file "$1" "$library"
    sed -i 's/typedef __va_list_tag __va_list_tag/__va_list_tag/' "$1"
}
if [ -n "${UPDATE_ABI:-}" ]; then recording "$record"; fi
if grep -n "='[^']*/" "$record"; then echo "the record names folders of one machine"; exit 1; fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
recording "$work/now.abi"
compare() { abidiff --no-show-locs "$1" "$work/now.abi" 2>&1; }

# planted <name> <change of the record> <what is said then>: against such a record this library would be a breach.
planted() {
    local said status=0
    sed -E "$2" "$record" >"$work/$1.abi"
    if cmp -s "$record" "$work/$1.abi"; then echo "nothing to change for '$1'"; exit 1; fi
    said=$(compare "$work/$1.abi") || status=$?
    if [ $((status & 4)) -eq 0 ] || ! grep -qF "$3" <<<"$said"; then
        printf 'abidiff takes %s for compatible, exit status %d:\n%s\n' "$1" "$status" "$said"
        exit 1
    fi
}
planted removed "s/'kor_heap_free(['@])/'kor_heap_gone\1/g" "kor_heap_gone"
planted parameter "/parameter type-id='[^']*' name='arguments'/d" kor_string_vformat
planted record "/class-decl name='KorException' /,/class-decl>/ s/layout-offset-in-bits='16'/layout-offset-in-bits='32'/" KorException
planted enumerator "s/(enumerator name='ABECS_RSP_STAT_ST_TIMEOUT' value=)'12'/\1'112'/" ABECS_RSP_STAT_ST_TIMEOUT

said=$(compare "$record") && exit 0
printf '%s\n' "$said"
echo "The interface differs from the record in abi/. Where something was added: UPDATE_ABI=1 $0 $*"
exit 1
