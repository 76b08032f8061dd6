#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# exports.sh <nm> <library> <list>: the library exports exactly the names of the list, none of them weak.
set -euo pipefail
nm=$1 library=$2 list=$3

LC_ALL=C sort -c -u "$list" || { echo "$list is not sorted, or holds a name twice"; exit 1; }

# Address, type and name@@version of each; the version itself is the one absolute symbol.
symbols=$("$nm" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $2, $3 }')
if grep -E '^[WwVvu] ' <<<"$symbols"; then
    echo "these exported names are weak"; exit 1
fi
diff --label reviewed --label exported -u0 "$list" <(cut -d' ' -f2 <<<"$symbols" | LC_ALL=C sort) ||
    { echo "cmake/exports.txt and the library's exported names differ"; exit 1; }
