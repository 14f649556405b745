#!/usr/bin/env bash
# Builds Debian's source package of TBB with the thread sanitizer, once, into build/tbb-tsan/installed: without
# it the sanitizer does not see how the scheduler hands work over, and calls that a race. TBB's own allocator is
# left out: the sanitizer knows nothing of what that gives back and hands out again, and of the C library's it does.
set -euo pipefail
folder=$PWD/build/tbb-tsan
[[ ! -e $folder/complete ]] || exit 0
mkdir -p "$folder"/{apt/lists/partial,apt/cache/archives/partial,apt/sources,source}
: >"$folder/apt/status"

# The same places as the system's, for sources: its own lists stay as they are.
for list in /etc/apt/sources.list.d/*.sources; do
    sed 's/^Types:.*/Types: deb-src/' "$list" >"$folder/apt/sources/${list##*/}"
done
sed -n 's/^deb /deb-src /p' /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null \
    >"$folder/apt/sources/lines.list" || true
options=(-qq -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$folder/apt/sources"
    -o Dir::State="$folder/apt" -o Dir::State::status="$folder/apt/status" -o Dir::Cache="$folder/apt/cache"
    -o Acquire::Languages=none -o APT::Sandbox::User=root)
apt-get "${options[@]}" update
version=$(dpkg-query -W -f '${source:Version}' libtbb-dev)
(cd "$folder/source" && apt-get "${options[@]}" source "onetbb=$version")
cmake -S "$folder"/source/onetbb-*/ -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS=-fsanitize=thread -DTBB_TEST=OFF -DTBB_STRICT=OFF -DTBBMALLOC_BUILD=OFF -DCMAKE_INSTALL_LIBDIR=lib \
    -DCMAKE_INSTALL_PREFIX="$folder/installed" >"$folder/configure.log"
cmake --build "$folder/build" --parallel "$(nproc)"
cmake --install "$folder/build" >/dev/null
touch "$folder/complete"
