#!/usr/bin/env bash
# Makes the archive twice, from copies of the sources in different folders and with other clocks, and compares the
# bytes.
#
# usage: compare.sh [OPTION...]     options are those of cmake, for a part of the archive
set -euo pipefail

root=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/..
work=$root/build/compare
options=("$@")
rm -rf "$work"
mkdir -p "$work"
work=$(readlink -f -- "$work")
SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct)
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1  # else the second would be the first

# make_in FOLDER BUILD: sources in FOLDER, built in BUILD, which lie at different depths and under other names.
make_in() {
    git clone -q "$root" "$1"
    "$1/packaging/archive.sh" "$1" "$2" "$work/out-$3" "${options[@]}"
}

make_in "$work/first" "$work/first/build" 1
(
    umask 077
    export TZ=Pacific/Auckland LC_ALL=C.UTF-8
    make_in "$work/somewhere else/second" "$work/built/elsewhere" 2
)
sha256sum "$work"/out-?/*
if ! cmp "$work"/out-1/* "$work"/out-2/*; then
    for side in 1 2; do
        mkdir "$work/unpacked-$side"
        tar -xf "$work/out-$side"/*.tar.xz -C "$work/unpacked-$side"
    done
    diff -rq "$work/unpacked-1" "$work/unpacked-2" >&2 || true
    exit 1
fi
