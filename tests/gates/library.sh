#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# library.sh <rule> <readelf> <nm> <library> [<more>]: what was built. Each rule is a function here.
set -euo pipefail
rule=$1 readelf=$2 nm=$3 library=$4 more=${5:-}
failed=0
fail() { echo "$1"; failed=1; }
symbols() { "$nm" "$@" "$library" | awk '{ print $NF }'; }

# The library exports exactly the names of the list <more>, none of them weak.
exports() {
    LC_ALL=C sort -c -u "$more" || fail "$more is not sorted, or holds a name twice"
    # Address, type and name@@version of each; the version itself is the one absolute symbol.
    exported=$("$nm" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $2, $3 }')
    ! grep -E '^[WwVvu] ' <<<"$exported" || fail "these exported names are weak"
    diff --label reviewed --label exported -u0 "$more" <(cut -d' ' -f2 <<<"$exported" | LC_ALL=C sort) ||
        fail "cmake/exports.txt with cmake/additions.txt and the library's exported names differ"
}

# What the library needs at run time, and that nothing of the C++ runtime is in it. <more>: sanitized.
needed() {
    allowed="libc|libtomcrypt|libtommath${more:+|libasan|libubsan|libm|libgcc_s}"
    libraries=$("$readelf" -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    grep -qx 'libc\.so\..*' <<<"$libraries" || fail "no needed libraries could be read"
    ! grep -vxE "($allowed)\.so\.[0-9]+" <<<"$libraries" || fail "the library needs these and must not"
    # A weak reference to __cxa_finalize comes from the compiler's own start files. The library's own functions have
    # mangled names too, but as local ones.
    ! symbols -D --undefined-only | grep -E '^(_Z|__cxa_|__gxx_|_Unwind_)' | grep -vE '^__cxa_finalize(@|$)' ||
        fail "the library asks for these parts of the C++ runtime"
    # Placement new, a plain function of the headers, is no part of it.
    ! symbols | grep -E '^(_ZT[VIS]|__cxa_pure_virtual|_Zn[wa]|_Zd[la])' | grep -vE '^(_Zn[wa][jm]Pv|_Zd[la]PvS_)$' ||
        fail "these parts of the C++ runtime are linked in"
}

# <more>: fortified.
hardening() {
    while read -r where pattern what; do
        [ -n "$where" ] || continue
        case $where in
        segments) "$readelf" -lW "$library" ;;
        dynamic) "$readelf" -dW "$library" ;;
        undefined) symbols -D --undefined-only ;;
        esac | grep -E "$pattern" >/dev/null || fail "the library lacks: $what"
    done <<END
segments GNU_RELRO a read-only relocation table
segments GNU_STACK.*\bRW\b a stack that is not executable
dynamic BIND_NOW|FLAGS_1.*NOW binding at load time
undefined __stack_chk_fail the stack protector
${more:+undefined __longjmp_chk fortified jumps
undefined __vsnprintf_chk fortified formats}
END
    ! "$readelf" -dW "$library" | grep TEXTREL || fail "the library relocates its code"
}

# The library calls its own exported functions directly: nobody can put another in between, and no call takes a detour.
bound() {
    own=$("$nm" -D --defined-only "$library" | sed -n 's/.* [TtWi] \([^@]*\).*/\1/p')
    [ -n "$own" ] || fail "no exported functions could be read"
    looked=$("$readelf" -rW "$library" | awk '$3 ~ /JUMP_SLO|GLOB_DAT/ { sub(/@.*/, "", $5); print $5 }')
    [ -n "$looked" ] || fail "no relocations could be read"
    ! grep -Fx "$own" <<<"$looked" ||
        fail "the library looks these functions of its own up at run time"
}

# What runs when the library is loaded is crypt_init and the compiler's own start code. A static object with a
# constructor would show here.
initialisers() {
    sections=$("$readelf" -SW "$library")
    read -r start size < <(sed -n 's/.* \.init_array  *INIT_ARRAY  *\([0-9a-f]*\) [0-9a-f]* \([0-9a-f]*\) .*/\1 \2/p' \
        <<<"$sections") || fail "no .init_array could be read"
    ! grep -E ' \.(ctors|preinit_array) ' <<<"$sections" || fail "the library has initialisers of another kind"
    # Each entry is a relocation: relative, its addend being the function's address, which for packed ones stands in the
    # place itself; or by the name of an exported one.
    declare -A names
    while read -r address _ name; do names[$((16#$address))]=$name; done < <(
        "$nm" --defined-only "$library" | grep ' [tT] ')
    found=0
    count() {
        [[ ${1%%@*} =~ ^(frame_dummy|crypt_init)$ ]] || fail "the library runs ${1%%@*} when it is loaded"
        ((found += 8))
    }
    while read -r offset _ type value name _; do
        [[ $type == R_* ]] && ((16#$offset >= 16#$start && 16#$offset < 16#$start + 16#$size)) || continue
        [[ $type != *_RELATIVE ]] || name=${names[$((16#$value))]:-an unnamed function}
        count "$name"
    done < <("$readelf" -rW "$library")
    while read -r place || [[ -n $place ]]; do
        ((found == 16#$size || 16#$place == 0)) || count "${names[$((16#$place))]:-an unnamed function}"
    done < <("$readelf" -x .init_array "$library" | sed -n 's/^  0x[0-9a-f]* \([0-9a-f ]\{35\}\).*/\1/p' |
        tr -d ' \n' | fold -w 16 | sed 's/\(..\)\(..\)\(..\)\(..\)\(..\)\(..\)\(..\)\(..\)/\8\7\6\5\4\3\2\1/')
    ((found == 16#$size)) || fail "$((16#$size / 8)) initialisers, of which $((found / 8)) could be read"
}

"$rule"
exit $failed
