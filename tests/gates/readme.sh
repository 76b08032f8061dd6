#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# readme.sh <README.md> <include folder> <C compiler> [<flag> ...]: the README lists every command, and its C program
# compiles without a warning.
set -euo pipefail
readme=$1 include=$2
shift 2

failed=0
for header in "$include"/quorvel/abecs/cmd/???.h; do
    command=$(basename "$header" .h)
    grep -qE "^\|.*\b${command^^}\b" "$readme" || { echo "the README leaves out ${command^^}"; failed=1; }
done

program=$(awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme")
grep -q 'int main' <<<"$program" || { echo "no C program was found in $readme"; exit 1; }
"$@" -I "$include" -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -x c - <<<"$program" || failed=1
exit $failed
