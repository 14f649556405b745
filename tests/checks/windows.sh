#!/usr/bin/env bash
# Compiles kernels, host, mesh library and program for Windows, up to linking, which would need libraries of others
# built for it. Says how many files compile, and ends with the first errors of those that do not.
#
# usage: windows.sh BUILD [FILE...]     BUILD is a built folder, which has the made sources
set -euo pipefail

root=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../..
build=$(readlink -f -- "$1")
shift
cd "$root"
work=$build/windows
mkdir -p "$work/include/arch"

# Headers of others, without those of this system's C library beside them.
for name in tbb oneapi fast_float nlohmann CLI minizip zlib.h tiny_gltf.h; do
    ln -sfn "/usr/include/$name" "$work/include/$name"
done
ln -sfn "$(echo /usr/include/*/zconf.h)" "$work/include/zconf.h"

flags=(-std=c++17 -O0 -Wall -Wextra -Wshadow -Werror -D_FILE_OFFSET_BITS=64 -DTESSARY_VERSION='""' -I.
    -Iinclude -Iembedded/include -Imesh/include "-I$build/version" -isystem "$work/include")

# A library exports its own names and imports those of the others.
compile() {
    local own=() object
    case $1 in
        src/*) own=(-Isrc -Dtessary_EXPORTS) ;;
        embedded/*) own=(-Dkorvane_embedded_EXPORTS) ;;
        cli/* | */cli/*) own=(-Icli) ;;
        *) own=(-Imesh -Dtessary_mesh_EXPORTS) ;;
    esac
    object=$work/${1//\//-}.o
    x86_64-w64-mingw32-g++-posix "${flags[@]}" "${own[@]}" -c "$1" -o "$object" 2>"$object.log" ||
        printf '%s\n' "$object.log"
}

if [[ $# == 0 ]]; then
    mapfile -t files < <(git ls-files 'src/*.cpp' 'embedded/src/*.cpp' 'mesh/*.cpp' 'cli/*.cpp' |
        grep -v mesh/files/assimp)
    set -- "${files[@]}" system/Windows.cpp "$build/cli/Version.cpp" "$build/viewer/PageTemplate.cpp"
fi
failed=()
pids=0
mapfile -t failed < <(for file in "$@"; do
    compile "$file" &
    pids=$((pids + 1))
    [[ $((pids % $(nproc))) != 0 ]] || wait
done; wait)
for log in "${failed[@]}"; do
    grep -m 3 -E 'error' "$log" >&2 || cat "$log" >&2
done
printf '%d of %d files compile for Windows\n' "$(($# - ${#failed[@]}))" "$#"
[[ ${#failed[@]} == 0 ]]
