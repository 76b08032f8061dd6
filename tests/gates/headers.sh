#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# headers.sh <include folder> <language> <alone|together> <compiler> [<flag> ...]: every public header compiles twice over,
# alone or behind all others, and is reached by one of the headers that hold all others: two of C, and one of C++. As C++,
# those of C compile together: alone they do as C.
set -euo pipefail
include=$1 language=$2 how=$3
shift 3
compile=("$@" -I "$include" -x "$language" -)
warnings=(-Wall -Wextra -Wpedantic -Wformat=2 -Wconversion -Wsign-conversion -Wshadow -Wcast-qual -Werror)

found() { (cd "$include" && find . "$@" | sed 's|^\./||' | sort); }
mapfile -t headers < <(found -name '*.h')
[ "${#headers[@]}" -gt 30 ] || { echo "only ${#headers[@]} headers were found"; exit 1; }
alone=("${headers[@]}") together=()
if [ "$language" != c ]; then
    mapfile -t alone < <(found -name '*.hpp')
    together=("${headers[@]}")
    headers+=("${alone[@]}")
fi
if [ "$how" = together ]; then alone=() together=("${headers[@]}"); fi

failed=0
try() {
    { printf '#include <%s>\n' "$@" "$@"; echo 'int not_empty;'; } | "${compile[@]}" -fsyntax-only "${warnings[@]}" ||
        { echo "fails: $*"; failed=1; }
}
for header in "${alone[@]}"; do try "$header"; done
[ "${#together[@]}" -eq 0 ] || try "${together[@]}"

reach() { echo "#include <$1>" | "${compile[@]}" -MM; }
reached=$(reach quorvel/quorvel.h; reach quorvel/additions.h; [ "$language" = c ] || reach quorvel/quorvel.hpp)
for header in "${headers[@]}"; do
    grep -qF "/$header" <<<"$reached" || { echo "the headers that hold all others leave out $header"; failed=1; }
done
exit $failed
