#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# layouts.sh <include> <list> <clang>: the size of every record of the interface, and the offset of each of its members, as
# they were reviewed. With UPDATE_LAYOUTS=1 the list is written anew, to be looked at.
set -euo pipefail
include=$1 list=$2 clang=$3
[ "$(uname -m)" = x86_64 ] || exit 0  # the list is that of one architecture
layouts() {
    "$clang" -std=c11 -I "$include" -Xclang -fdump-record-layouts-complete -fsyntax-only -x c - <<<'#include <quorvel/quorvel.h>' |
        sed -E 's/ at [^)]*\)/)/' |
        awk -v RS= -v ORS='\n\n' '/^\*\*\* Dumping[^\n]*\n *0 \| (struct|union) (Abecs|Crypt|Kor)/ { sub(/^[^\n]*\n/, ""); print }' |
        sed -E 's/ +$//'
}
now=$(layouts)
[ "$(grep -c 'sizeof=' <<<"$now")" -ge 30 ] || { echo "no records could be read"; exit 1; }
if [ -n "${UPDATE_LAYOUTS:-}" ]; then printf '%s\n' "$now" >"$list"; fi
diff --label reviewed --label now -u "$list" - <<<"$now" || {
    echo "records of the interface have changed: programs built before would read other members"
    exit 1
}
