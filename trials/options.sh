#!/usr/bin/env bash
# usage: options.sh [NAME...]
# Builds libraries and the driver of hashes with other compilers and options below build/options, and compares
# every hash and every file with what build/dev makes; prints a row for each.
set -euo pipefail

# name; compiler; its options for everything, the libraries included; build type
builds=(
    "gcc -O0;g++;-O0;None"
    "gcc -O1;g++;-O1;None"
    "gcc -O2;g++;-O2;None"
    "gcc -O3;g++;-O3;None"
    "clang -O0;clang++;-O0;None"
    "clang -O1;clang++;-O1;None"
    "clang -O2;clang++;-O2;None"
    "clang -O3;clang++;-O3;None"
    "gcc -O3 -march=x86-64-v3;g++;-O3 -march=x86-64-v3;None"
    "clang -O3 -march=x86-64-v3;clang++;-O3 -march=x86-64-v3;None"
    "gcc -march=x86-64-v3 -ffp-contract=fast;g++;-O2 -march=x86-64-v3 -ffp-contract=fast;None"
    "clang -march=x86-64-v3 -ffp-contract=fast;clang++;-O2 -march=x86-64-v3 -ffp-contract=fast;None"
    "clang with libc++;clang++;-O2 -stdlib=libc++;None"
)

# What the driver makes of one build; "" for the one of this machine's dev build.
hashes_of() {
    local work
    work=$(mktemp -d)
    "$1" "$work"
    rm -r "$work"
}

row() {
    local name=$1 compiler=$2 options=$3 type=$4 folder verdict
    folder=$PWD/build/options/${name//[^a-zA-Z0-9-]/_}
    mkdir -p "$folder"
    if ! { cmake -S trials -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE="$type" \
        -DCMAKE_CXX_FLAGS="$options" -DTRIAL_WITH_PROGRAM=OFF &&
        cmake --build "$folder" --parallel "$(nproc)" --target trial_hashes; } >"$folder/build.log" 2>&1; then
        verdict="does not build"
    elif hashes_of "$folder/trial_hashes" | diff "$expected" - >"$folder/difference"; then
        verdict="$(wc -l <"$expected") equal"
    else
        verdict="$(grep -c '^>' "$folder/difference") of $(wc -l <"$expected") differ"
    fi
    printf '| %s | %s | %s |\n' "$name" "$("$compiler" -dumpfullversion -dumpversion)" "$verdict"
    [[ $verdict == *equal ]]
}

mkdir -p build/options
expected=$PWD/build/options/expected.txt
hashes_of build/dev/tests/trials/trial_hashes >"$expected"
failed=0
printf '| compiler and options | version | hashes |\n|---|---|---|\n'
for each in "${builds[@]}"; do
    IFS=';' read -r name compiler options type <<<"$each"
    [[ $# == 0 || " $* " == *" $name "* ]] || continue
    row "$name" "$compiler" "$options" "$type" || failed=1
done
exit "$failed"
