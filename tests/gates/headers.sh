#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# headers.sh <include folder> <language> <compiler> [<flag> ...]: every public header compiles alone, and twice over,
# and is reached by one of the headers that hold all others: two of C, and one of C++.
set -euo pipefail
include=$1 language=$2
shift 2
compile=("$@" -I "$include" -x "$language" -)
warnings=(-Wall -Wextra -Wpedantic -Wformat=2 -Wconversion -Wsign-conversion -Wshadow -Wcast-qual -Werror)

kinds=(-name '*.h')
[ "$language" = c ] || kinds+=(-o -name '*.hpp')
mapfile -t headers < <(cd "$include" && find . "${kinds[@]}" | sed 's|^\./||' | sort)
[ "${#headers[@]}" -gt 30 ] || { echo "only ${#headers[@]} headers were found"; exit 1; }
reach() { echo "#include <$1>" | "${compile[@]}" -MM; }
reached=$(reach quorvel/quorvel.h; reach quorvel/additions.h; [ "$language" = c ] || reach quorvel/quorvel.hpp)
failed=0
for header in "${headers[@]}"; do
    printf '#include <%s>\n#include <%s>\nint not_empty;\n' "$header" "$header" |
        "${compile[@]}" -fsyntax-only "${warnings[@]}" || { echo "$header fails"; failed=1; }
    grep -qF "/$header" <<<"$reached" || { echo "the headers that hold all others leave out $header"; failed=1; }
done
exit $failed
