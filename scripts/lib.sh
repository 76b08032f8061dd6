# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
# Sourced by the scripts: moves to the project's root and offers what they share.
# shellcheck shell=bash
set -euo pipefail
unset CDPATH
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\n== %s\n' "$*"; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# missing_packages <list>: those of the list that dpkg does not know as installed, one a line.
missing_packages() {
    local package
    sed 's/#.*//' "$1" | while read -r package; do
        [ -n "$package" ] || continue
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || printf '%s\n' "$package"
    done
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    elif command -v sudo >/dev/null; then
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    else
        die "these packages are missing and neither root nor sudo is at hand to install them: ${missing[*]}"
    fi
}

# install_packages [<list>]: those of packages.txt, or of that list. Asks the network only when something is missing.
install_packages() {
    local list=${1:-packages.txt}
    command -v dpkg-query >/dev/null || die "this is no Debian system; install what $list names, then build with cmake"
    local missing
    mapfile -t missing < <(missing_packages "$list")
    [ "${#missing[@]}" -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    as_root apt-get -o Acquire::Retries=3 update -q </dev/null
    as_root apt-get -o Acquire::Retries=3 install -q -y --no-install-recommends "${missing[@]}" </dev/null
}

# build <preset> [<target> ...]
build() {
    local preset=$1
    shift
    say "Building $preset"
    cmake --preset "$preset"
    cmake --build --preset "$preset" ${1:+--target "$@"}
}

# run_tests <preset> [<option of ctest> ...]
run_tests() {
    say "Testing $*"
    ctest --preset "$@"
}
