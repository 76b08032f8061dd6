#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# run.sh <cmake> <source folder> <build folder> <C compiler> <C++ compiler> <library folder>: installs the build into
# an empty prefix, then builds and runs a small program in C and one in C++ against it through find_package,
# and the former through pkg-config; and the tests of examples/fixture, which play a PIN pad themselves.
set -euo pipefail
cmake=$1 source=$2 build=$3 cc=$4 cxx=$5 libdir=$6
flags=(-Wall -Wextra -Wpedantic -Werror)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Moved after the installation: neither description may remember where it was first put.
"$cmake" --install "$build" --prefix "$work/first" >"$work/log" || { cat "$work/log"; exit 1; }
prefix=$work/moved
mv "$work/first" "$prefix"

diff <(cd "$source/include" && find . -type f | sort) <(cd "$prefix/include" && find . -path ./quorvel-sim -prune -o -type f -print | sort) ||
    { echo "the installed headers differ from the tree's"; exit 1; }
if readelf -d "$prefix/$libdir/libquorvel0.so" | grep -E 'RPATH|RUNPATH'; then
    echo "the installed library looks for its needs in a folder of the build"; exit 1
fi
if grep -rlF -e "$source" -e "$build" -e "$work/first" "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig"; then
    echo "these files name a folder of the build"; exit 1
fi

# The guides are read where they lie: their links lead to what is installed with them, the headers among it.
"$source/debian/tests/guides" "$prefix"

# What the Debian packages are made of says the same as the build.
diff <(LC_ALL=C sort <(echo QUORVEL_0) "$source"/cmake/{exports,additions}.txt) \
    <(sed -n 's/^ \(.*\)@QUORVEL_0 .*/\1/p' "$source/debian/libquorvel0.symbols" | LC_ALL=C sort) ||
    { echo "debian/libquorvel0.symbols lists other names than cmake/exports.txt with cmake/additions.txt"; exit 1; }
head -1 "$source/debian/changelog" | grep -qF 'quorvel (0.1.0)'

expected=$'0.1.0\n[KOR_RESULT_ILLEGAL_ARGUMENT] \'out\' is NULL'
check() {
    local printed
    printed=$("$2")
    [ "$printed" = "$expected" ] && return
    printf 'through %s the program printed:\n%s\nexpected:\n%s\n' "$1" "$printed" "$expected"
    exit 1
}

outside=(-G Ninja -DCMAKE_C_COMPILER="$cc" -DCMAKE_C_FLAGS="${flags[*]}" -DCMAKE_CXX_COMPILER="$cxx"
    -DCMAKE_CXX_FLAGS="${flags[*]}" -DCMAKE_PREFIX_PATH="$prefix")
"$cmake" -S "$here/consumer" -B "$work/consumer" "${outside[@]}" --no-warn-unused-cli >"$work/log"
"$cmake" --build "$work/consumer" >>"$work/log" || { cat "$work/log"; exit 1; }
check find_package "$work/consumer/consumer"
check "find_package and C++" "$work/consumer/cpp_consumer"

export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
[ "$(pkg-config --modversion quorvel)" = 0.1.0 ]
read -ra from_pkg_config <<<"$(pkg-config --cflags --libs quorvel)"
"$cc" -std=c11 "${flags[@]}" "$here/consumer/main.c" -o "$work/by_pkg_config" "${from_pkg_config[@]}"
check pkg-config "$work/by_pkg_config"

# Where the loader looks by itself, it is told nothing.
DESTDIR=$work/system "$cmake" --install "$build" --prefix /usr >"$work/log" || { cat "$work/log"; exit 1; }
[ "$(PKG_CONFIG_PATH=$work/system/usr/$libdir/pkgconfig pkg-config --libs-only-other quorvel)" = "" ]

# refuses <components> <what CMake says of them> [<version>]
refuses() {
    "$cmake" -S "$here/consumer" -B "$work/refused" "${outside[@]}" -DCONSUMER_COMPONENTS="$1" \
        -DCONSUMER_VERSION="${3:-0.1}" >"$work/log" 2>&1 && { echo "$1 ${3:-} was found"; exit 1; }
    tr -s ' \n' ' ' <"$work/log" | grep -qF "$2" || { cat "$work/log"; exit 1; }
}
refuses cobol 'quorvel has no component "cobol", only "simulator"'
# Another minor version is another interface, before 1.0.
for version in 0.0 0.2 1.0; do refuses '' 'version: 0.1.0' "$version"; done

if [ -e "$prefix/bin/quorvel-sim" ]; then
    "$prefix/bin/quorvel-sim" --help >/dev/null
    "$cmake" -S "$source/examples/fixture" -B "$work/fixture" "${outside[@]}" --no-warn-unused-cli >"$work/log"
    "$cmake" --build "$work/fixture" >>"$work/log" || { cat "$work/log"; exit 1; }
    ctest --test-dir "$work/fixture" >"$work/log" || { cat "$work/log"; exit 1; }
    grep -q 'tests passed, 0 tests failed out of 4' "$work/log" || { cat "$work/log"; exit 1; }
    printf '#include <%s>\n' quorvel/quorvel.hpp simulator/simulator.h | "$cxx" -std=c++20 "${flags[@]}" -fsyntax-only \
        -isystem "$prefix/include" -isystem "$prefix/include/quorvel-sim" -x c++ -
    mv "$prefix/$libdir"/cmake/quorvel/quorvel-simulator-targets.cmake "$work"
    refuses simulator 'this quorvel was built without its virtual PIN pad'
fi

if [ -e "$prefix/bin/quorvel" ]; then
    [ "$("$prefix/bin/quorvel" --version)" = 0.1.0 ]
    "$prefix/bin/quorvel" info --port "$work/none" 2>/dev/null && { echo "a port that is not there was opened"; exit 1; }
    . "$prefix/share/bash-completion/completions/quorvel"
    [ -s "$prefix/share/zsh/site-functions/_quorvel" ]
    for file in bash-completion/completions/quorvel-sim zsh/site-functions/_quorvel-sim; do [ -s "$prefix/share/$file" ]; done
    [ -s "$prefix/share/doc/quorvel/virtual.tables" ]
    if command -v scdoc >/dev/null; then
        for page in man1/quorvel.1 man1/quorvel-sim.1 man5/quorvel-tables.5; do [ -s "$prefix/share/man/$page" ]; done
    fi
fi

if [ -e "$prefix/bin/quorvel" ] && [ -e "$prefix/bin/quorvel-sim" ]; then
    # Of a build folder in which nothing has been built, nothing is installed, and what is missing is what the two programs'
    # builds make.
    "$cmake" -S "$source" -B "$work/empty" -G Ninja -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
        -DQUORVEL_BUILD_TESTS=OFF -DQUORVEL_BUILD_EXAMPLES=OFF >"$work/log"
    "$cmake" --install "$work/empty" --prefix "$work/nothing" >"$work/log" 2>&1 && { echo "nothing was installed"; exit 1; }
    grep -qF "cmake --build $work/empty" "$work/log" || { cat "$work/log"; exit 1; }
    [ ! -e "$work/nothing" ] || { echo "half an installation was left"; exit 1; }
    mapfile -t missing < <(sed -n "/not built yet/,/Build them/s|^ *$work/empty/||p" "$work/log")
    made=$(ninja -C "$work/empty" -t commands quorvel-sim quorvel-cli)
    [ "${#missing[@]}" -ge 7 ] || { cat "$work/log"; exit 1; }
    for file in "${missing[@]}"; do
        grep -qF "$file" <<<"$made" || { echo "$file is made by neither quorvel-sim nor quorvel-cli"; exit 1; }
    done
fi
