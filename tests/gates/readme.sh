#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# readme.sh <README.md> <C compiler> [<flag> ...]: the C program of the README compiles without a warning.
set -euo pipefail
readme=$1
shift
program=$(awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme")
grep -q 'int main' <<<"$program" || { echo "no C program was found in $readme"; exit 1; }
"$@" -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -x c - <<<"$program"
