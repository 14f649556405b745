#!/usr/bin/env bash
# Builds libraries, program and examples by every compiler that is here, with warnings as errors, runs them, and
# compares what they write: the same bits by all. Prints a table.
#
# usage: compilers.sh WORK [COMPILER...]     a compiler is a command, with "/libc++" behind it for that library
set -euo pipefail

root=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../..
work=$1
shift
[[ $# -gt 0 ]] || set -- g++-11 g++-12 clang++-13 clang++-14 clang++-15 clang++-16 clang++-19 clang++-16/libc++
mkdir -p "$work"
work=$(readlink -f -- "$work")

# Where something fails, its name; the log tells more.
run_compiler() {
    local compiler=${1%/libc++} build=$work/${1//\//-} flags="-Werror"
    [[ $1 != */libc++ ]] || flags+=" -stdlib=libc++"
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O1 -DNDEBUG" -DTESSARY_BUILD_TESTS=OFF \
        -DTESSARY_BUILD_PYTHON=OFF -DTESSARY_WITH_ASSIMP=OFF >"$build.log" 2>&1 || return 1
    cmake --build "$build" --parallel "$(nproc)" >>"$build.log" 2>&1 || return 1
    rm -rf "$build/prefix" "$build/demo"
    cmake --install "$build" --prefix "$build/prefix" >>"$build.log" 2>&1 || return 1
    cmake -S "$root/examples" -B "$build/examples" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="$flags -Wall -Wextra -Wpedantic" -DCMAKE_CXX_STANDARD=20 \
        -DCMAKE_PREFIX_PATH="$build/prefix" >>"$build.log" 2>&1 || return 1
    cmake --build "$build/examples" >>"$build.log" 2>&1 || return 1
    (cd "$build/examples" && ctest) >>"$build.log" 2>&1 || return 1
    "$build/prefix/bin/tessary" demo --output "$build/demo" --quiet >>"$build.log" 2>&1 || return 1
}

# One sum over what the demo wrote, by name; pages name no compiler.
bits_of() {
    (cd "$1/demo" && find . -type f ! -name '*.html' | LC_ALL=C sort | xargs sha256sum) | sha256sum | cut -c1-12
}

failed=0 first=
printf '| compiler | version | library | build, examples | bits of the demo |\n|---|---|---|---|---|\n'
for name in "$@"; do
    compiler=${name%/libc++} library=libstdc++
    [[ $name != */libc++ ]] || library=libc++
    command -v "$compiler" >/dev/null || {
        printf '| %s | is not here | %s | | |\n' "$compiler" "$library"
        continue
    }
    version=$("$compiler" -dumpfullversion 2>/dev/null || "$compiler" -dumpversion)
    if run_compiler "$name"; then
        bits=$(bits_of "$work/${name//\//-}")
        printf '| %s | %s | %s | no warning, pass | %s |\n' "$compiler" "$version" "$library" "$bits"
        [[ ${first:=$bits} == "$bits" ]] || failed=1
    else
        printf '| %s | %s | %s | fails: %s | |\n' "$compiler" "$version" "$library" "$work/${name//\//-}.log"
        failed=1
    fi
done
exit "$failed"
