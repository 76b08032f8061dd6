#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# initialisers.sh <readelf> <nm> <library>: what runs when the library is loaded: crypt_init, once there is one, and
# the compiler's own start code. A static object with a constructor would show here.
set -euo pipefail
readelf=$1 nm=$2 library=$3

section=$("$readelf" -SW "$library" | sed -n 's/.* \.init_array  *INIT_ARRAY  *\([0-9a-f]*\) [0-9a-f]* \([0-9a-f]*\) .*/\1 \2/p')
[ -n "$section" ] || { echo "no .init_array could be read"; exit 1; }
if "$readelf" -SW "$library" | grep -E ' \.(ctors|preinit_array) '; then
    echo "the library has initialisers of another kind"; exit 1
fi
start=$((16#${section% *}))
count=$((16#${section#* } / 8))

# Each entry is a relocation: relative, its addend being the function's address, or by the name of an exported one.
declare -A names
while read -r address _ name; do
    names[$((16#$address))]=$name
done < <("$nm" --defined-only "$library" | grep ' [tT] ')
found=()
while read -r offset _ type value name _; do
    [[ $type == R_* ]] && ((16#$offset >= start && 16#$offset < start + 8 * count)) || continue
    case $type in
    *_RELATIVE) found+=("${names[$((16#$value))]:-an unnamed function}") ;;
    *) found+=("${name%%@*}") ;;
    esac
done < <("$readelf" -rW "$library")
[ "${#found[@]}" -eq "$count" ] || { echo "$count initialisers, of which ${#found[@]} could be read"; exit 1; }

for name in "${found[@]}"; do
    case $name in
    frame_dummy | crypt_init) ;;
    *) echo "the library runs $name when it is loaded"; exit 1 ;;
    esac
done
