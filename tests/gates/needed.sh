#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# needed.sh <readelf> <nm> <library> [sanitized]: what the library needs at run time, and that nothing of the C++
# runtime is in it.
set -euo pipefail
readelf=$1 nm=$2 library=$3 sanitized=${4:-}

allowed='libc|libtomcrypt|libtommath'
[ -z "$sanitized" ] || allowed+='|libasan|libubsan|libm|libgcc_s'
needed=$("$readelf" -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
grep -qx 'libc\.so\..*' <<<"$needed" || { echo "no needed libraries could be read"; exit 1; }
if grep -vxE "($allowed)\.so\.[0-9]+" <<<"$needed"; then
    echo "the library needs these and must not"; exit 1
fi

# A weak reference to __cxa_finalize comes from the compiler's own start files. The library's own functions have
# mangled names too, but as local ones.
if "$nm" -D --undefined-only "$library" | awk '{ print $NF }' | grep -E '^(_Z|__cxa_|__gxx_|_Unwind_)' |
    grep -vE '^__cxa_finalize(@|$)'; then
    echo "the library asks for these parts of the C++ runtime"; exit 1
fi
# Placement new, a plain function of the headers, is no part of it.
if "$nm" "$library" | awk '{ print $NF }' | grep -E '^(_ZT[VIS]|__cxa_pure_virtual|_Zn[wa]|_Zd[la])' |
    grep -vE '^(_Zn[wa][jm]Pv|_Zd[la]PvS_)$'; then
    echo "these parts of the C++ runtime are linked in"; exit 1
fi
