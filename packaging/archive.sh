#!/usr/bin/env bash
# Makes an archive of what is installed that runs wherever it is unpacked: libraries find each other beside them,
# and those that other systems may lack, TBB and minizip, lie there too.
#
# usage: archive.sh SOURCE BUILD OUTPUT [OPTION...]     BUILD is a build folder, OUTPUT the folder of the archive,
#                                                       options are those of cmake
#
# The same sources give the same bytes: SOURCE_DATE_EPOCH is the time of every file, and no path of this machine
# is in any of them.
set -euo pipefail

source=$(readlink -f -- "$1")
build=$2
output=$3
version=$(sed -nE 's/^project\(Tessary VERSION (\S+).*/\1/p' "$source/CMakeLists.txt")
name=tessary-$version-linux-$(uname -m)

# Libraries of others, under the names by which they are looked for.
add_foreign_libraries() {
    local target=$1 soname path
    while read -r soname path; do
        install -m 644 "$path" "$target/$soname"
        strip --strip-unneeded "$target/$soname"
    done < <(ldd "$target"/lib*.so | sort -u | awk '$1 ~ /^lib(tbb|minizip)\./ { print $1, $3 }')
}

add_papers() {
    local package
    mkdir -p "$1/share/doc/tessary"
    cp "$source/CHANGELOG.md" "$source/README.md" "$1/share/doc/tessary"
    for package in libtbb12 libminizip1; do
        cp "/usr/share/doc/$package/copyright" "$1/share/doc/tessary/copyright-$package"
    done
    {
        cat "$source/packaging/debian/copyright"
        for package in libtessary-mesh2 tessary python3-tessary; do
            python3 -B "$source/packaging/third_parties.py" notices "$package"
        done
    } >"$1/share/doc/tessary/copyright"
}

# Where libraries lie while they are built would leave a trace in their id, though it is replaced when they are
# installed: it is said relative to them.
cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/opt/tessary \
    -DCMAKE_INSTALL_LIBDIR=lib -DTESSARY_BUILD_TESTS=OFF -DTESSARY_BUILD_PYTHON=ON -DTESSARY_WITH_ASSIMP=OFF \
    -DCMAKE_BUILD_RPATH_USE_ORIGIN=ON \
    "${@:4}" >&2
cmake --build "$build" --parallel "$(nproc)" >&2
rm -rf "${build:?}/stage"
cmake --install "$build" --strip --prefix "$build/stage/$name" >/dev/null
add_foreign_libraries "$build/stage/$name/lib"
add_papers "$build/stage/$name"
mkdir -p "$output"
tar --create --sort=name --format=gnu --owner=0 --group=0 --numeric-owner --mode=go=rX,u+rw,a-s \
    --mtime="@$SOURCE_DATE_EPOCH" --directory "$build/stage" "$name" |
    xz -9 --threads=1 >"$output/$name.tar.xz"
printf '%s\n' "$output/$name.tar.xz"
